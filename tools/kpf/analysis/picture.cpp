#include "tools/kpf/analysis/picture.h"

#include <algorithm>

namespace KPF_TOOL {
namespace {

constexpr unsigned kPointReach = 7;  // pixels that a point's box goes to either side

/// Calls `use` with each grey level, row by row.
template <class Use>
void forEachLevel(const unsigned char* frame, const PictureLayout& layout, const Box& box,
                  Use use) {
  for (unsigned y = box.y; y < box.y + box.height; ++y) {
    const std::size_t first = std::size_t{y} * layout.width + box.x;
    if (layout.samples == Samples::k8Bit) {
      const unsigned char* const row = frame + first;
      for (unsigned x = 0; x < box.width; ++x) use(static_cast<float>(row[x]));
    } else {
      const unsigned char* const row = frame + 2 * first;
      for (unsigned x = 0; x < box.width; ++x) {
        use(static_cast<float>(row[2 * x] | row[2 * x + 1] << 8) * kLevelOf16);
      }
    }
  }
}

}  // namespace

bool isInside(const Box& box, const PictureLayout& layout) {
  // Subtracted, not added: the numbers may be anything.
  return box.width > 0 && box.height > 0 && box.width <= layout.width &&
         box.height <= layout.height && box.x <= layout.width - box.width &&
         box.y <= layout.height - box.height;
}

Box boxAround(unsigned x, unsigned y, const PictureLayout& layout) {
  return grown({x, y, 1, 1}, kPointReach, layout);
}

Box grown(const Box& box, unsigned margin, const PictureLayout& layout) {
  const unsigned left = std::min(box.x, margin);
  const unsigned top = std::min(box.y, margin);
  const unsigned right = std::min(layout.width - box.x - box.width, margin);
  const unsigned bottom = std::min(layout.height - box.y - box.height, margin);
  return {box.x - left, box.y - top, left + box.width + right, top + box.height + bottom};
}

void copyLevels(const unsigned char* frame, const PictureLayout& layout, const Box& box,
                std::span<float> levels) {
  float* out = levels.data();
  forEachLevel(frame, layout, box, [&out](float level) { *out++ = level; });
}

double meanLevel(const unsigned char* frame, const PictureLayout& layout, const Box& box) {
  double sum = 0;
  forEachLevel(frame, layout, box, [&sum](float level) { sum += static_cast<double>(level); });
  return sum / static_cast<double>(box.pixelCount());
}

}  // namespace KPF_TOOL

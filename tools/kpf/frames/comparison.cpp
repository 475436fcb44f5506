#include "tools/kpf/frames/comparison.h"

namespace KPF_TOOL {

Comparison::Comparison(unsigned width, unsigned height, const std::array<std::string, 3>& captions)
    : width_(width),
      height_(height),
      canvas_(3 * width + 2 * kGap, height + Canvas::kCaptionHeight) {
  unsigned left = 0;
  for (const std::string& caption : captions) {
    canvas_.write(caption, left + Canvas::kCaptionMargin, Canvas::kCaptionMargin);
    left += width_ + kGap;
  }
}

const unsigned char* Comparison::of(const std::array<const unsigned char*, 3>& pictures) {
  unsigned left = 0;
  for (const unsigned char* picture : pictures) {
    canvas_.place(picture, width_, height_, left, Canvas::kCaptionHeight);
    left += width_ + kGap;
  }
  return canvas_.rows();
}

}  // namespace KPF_TOOL

#include "tools/kpf/analysis/box_mean.h"

#include <algorithm>
#include <cstddef>

namespace KPF_TOOL {
namespace {

/// Along one line of `count` values, `step` apart.
void smoothLine(const float* in, float* out, std::size_t count, std::size_t step,
                std::size_t reach) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t first = i - std::min(i, reach);
    const std::size_t end = std::min(i + reach + 1, count);
    float sum = 0;
    for (std::size_t k = first; k < end; ++k) sum += in[k * step];
    out[i * step] = sum / static_cast<float>(end - first);
  }
}

}  // namespace

std::vector<float> boxMean(const std::vector<float>& values, unsigned width, unsigned height,
                           unsigned reach) {
  std::vector<float> rows(values.size()), out(values.size());
  for (std::size_t y = 0; y < height; ++y) {
    smoothLine(values.data() + y * width, rows.data() + y * width, width, 1, reach);
  }
  for (std::size_t x = 0; x < width; ++x) {
    smoothLine(rows.data() + x, out.data() + x, height, width, reach);
  }
  return out;
}

}  // namespace KPF_TOOL

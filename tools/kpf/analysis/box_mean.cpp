#include "tools/kpf/analysis/box_mean.h"

#include <algorithm>
#include <cstddef>

namespace KPF_TOOL {
namespace {

/// A piece of a line of `count` that reaches from `at` to both sides.
struct Neighbours {
  Neighbours(std::size_t at, std::size_t reach, std::size_t count)
      : first(at - std::min(at, reach)), end(std::min(at + reach + 1, count)) {}

  float share() const { return 1 / static_cast<float>(end - first); }

  std::size_t first, end;
};

/// Row `y` of the mean along the columns, a row at a time, as they lie in memory.
void meanOfRows(const float* values, std::size_t width, const Neighbours& rows, float* out) {
  std::fill_n(out, width, 0.F);
  for (std::size_t k = rows.first; k < rows.end; ++k) {
    const float* const row = values + k * width;
    for (std::size_t x = 0; x < width; ++x) out[x] += row[x];
  }
  for (std::size_t x = 0; x < width; ++x) out[x] *= rows.share();
}

}  // namespace

std::vector<float> boxMean(const std::vector<float>& values, unsigned width, unsigned height,
                           unsigned reach) {
  std::vector<float> row(width), out(values.size());
  for (std::size_t y = 0; y < height; ++y) {
    meanOfRows(values.data(), width, Neighbours(y, reach, height), row.data());
    for (std::size_t x = 0; x < width; ++x) {
      const Neighbours columns(x, reach, width);
      float sum = 0;
      for (std::size_t k = columns.first; k < columns.end; ++k) sum += row[k];
      out[y * width + x] = sum * columns.share();
    }
  }
  return out;
}

}  // namespace KPF_TOOL

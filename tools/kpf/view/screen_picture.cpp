#include "tools/kpf/view/screen_picture.h"

#include <algorithm>
#include <cmath>

#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/numbers.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kLevels = 4096;
constexpr std::uint64_t kAtLeastOne = 1;  // sample in a pixel: a cutout is never enlarged

/// Where the samples of pixel `index` of `out` begin, of `size` samples from `first` on.
std::size_t edge(unsigned first, unsigned size, unsigned index, unsigned out) {
  return first + static_cast<std::size_t>(index) * size / out;
}

unsigned leftJustified(std::uint16_t sample) { return sample; }
unsigned leftJustified(unsigned char sample) { return static_cast<unsigned>(sample) << 8; }

template <class Sample>
void appendMeans(std::vector<unsigned char>& out, std::span<const Sample> samples,
                 std::size_t width, const Cutout& cut, const Tone& tone) {
  std::vector<std::uint32_t> sums(cut.width);
  for (unsigned row = 0; row < cut.outHeight; ++row) {
    const std::size_t top = edge(cut.top, cut.height, row, cut.outHeight);
    const std::size_t bottom = edge(cut.top, cut.height, row + 1, cut.outHeight);
    std::fill(sums.begin(), sums.end(), 0U);
    for (std::size_t y = top; y < bottom; ++y) {
      const Sample* const in = samples.data() + y * width + cut.left;
      for (std::size_t x = 0; x < sums.size(); ++x) sums[x] += leftJustified(in[x]);
    }
    for (unsigned column = 0; column < cut.outWidth; ++column) {
      const std::size_t left = edge(0, cut.width, column, cut.outWidth);
      const std::size_t right = edge(0, cut.width, column + 1, cut.outWidth);
      std::uint64_t sum = 0;
      for (std::size_t x = left; x < right; ++x) sum += sums[x];
      const std::uint64_t samplesOfPixel = std::uint64_t{right - left} * (bottom - top);
      out.push_back(tone.of(static_cast<unsigned>(sum / std::max(samplesOfPixel, kAtLeastOne))));
    }
  }
}

}  // namespace

Tone::Tone(double low, double high, double gamma) : table_{} {
  const double range = std::max(high - low, 1.0);
  for (unsigned level = 0; level < kLevels; ++level) {
    const double linear = std::clamp((level - low) / range, 0.0, 1.0);
    table_[level] = static_cast<unsigned char>(std::llround(255 * std::pow(linear, 1 / gamma)));
  }
}

Cutout cutoutOf(const std::string& text, unsigned width, unsigned height) {
  if (text.empty()) return {0, 0, width, height, width, height};
  const auto values = numbersOf(text, 6);
  Cutout cut;
  cut.left = std::min(wholeOf(values[0]), width - 1);
  cut.top = std::min(wholeOf(values[1]), height - 1);
  cut.width = std::clamp(wholeOf(values[2]), 1U, width - cut.left);
  cut.height = std::clamp(wholeOf(values[3]), 1U, height - cut.top);
  cut.outWidth = std::clamp(wholeOf(values[4]), 1U, cut.width);
  cut.outHeight = std::clamp(wholeOf(values[5]), 1U, cut.height);
  return cut;
}

void appendShown(std::vector<unsigned char>& out, std::span<const std::uint16_t> samples,
                 std::size_t width, const Cutout& cutout, const Tone& tone) {
  appendMeans(out, samples, width, cutout, tone);
}

void appendShown(std::vector<unsigned char>& out, std::span<const unsigned char> samples,
                 std::size_t width, const Cutout& cutout, const Tone& tone) {
  appendMeans(out, samples, width, cutout, tone);
}

void appendMarks(std::vector<unsigned char>& out, std::span<const unsigned char> marks,
                 std::size_t width, const Cutout& cut) {
  for (unsigned row = 0; row < cut.outHeight; ++row) {
    const std::size_t top = edge(cut.top, cut.height, row, cut.outHeight);
    const std::size_t bottom = edge(cut.top, cut.height, row + 1, cut.outHeight);
    for (unsigned column = 0; column < cut.outWidth; ++column) {
      const std::size_t left = edge(cut.left, cut.width, column, cut.outWidth);
      const std::size_t right = edge(cut.left, cut.width, column + 1, cut.outWidth);
      unsigned char mark = 0;
      for (std::size_t y = top; y < bottom; ++y) {
        mark = std::max(mark, *std::max_element(marks.data() + y * width + left,
                                                marks.data() + y * width + right));
      }
      out.push_back(mark);
    }
  }
}

}  // namespace KPF_TOOL

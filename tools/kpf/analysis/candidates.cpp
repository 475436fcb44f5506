#include "tools/kpf/analysis/candidates.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "tools/kpf/analysis/peaks.h"

namespace KPF_TOOL {
namespace {

constexpr double kPixels = 4096;
// The average of so many spectra scatters by a hundredth: less than a single one by far.
constexpr double kAboveAverage = 1.25;

}  // namespace

Candidates::Candidates(const PictureLayout& layout, const Stretches& stretches, double rate)
    : layout_(layout),
      stretches_(stretches),
      rate_(rate),
      window_(hannWindow(stretches.length)),
      transform_(Transform::lengthFor(2 * std::max<std::size_t>(stretches.length, 1))),
      powers_(transform_.length() / 2 + 1) {
  spreadPixels();
  levels_.resize(pixels_.size() * stretches.length);
}

// One pixel at random in each square of a grid: in line they might all sit where a regular texture
// has no slope. The numbers are the same in every run.
void Candidates::spreadPixels() {
  const double share = static_cast<double>(layout_.pixelCount()) / kPixels;
  const auto step = static_cast<unsigned>(std::max(std::ceil(std::sqrt(share)), 1.0));
  std::mt19937 random(1);
  for (unsigned y = 0; y < layout_.height; y += step) {
    for (unsigned x = 0; x < layout_.width; x += step) {
      const unsigned right = x + static_cast<unsigned>(random() % step);
      const unsigned down = y + static_cast<unsigned>(random() % step);
      pixels_.push_back(std::size_t{std::min(down, layout_.height - 1)} * layout_.width +
                        std::min(right, layout_.width - 1));
    }
  }
}

void Candidates::add(const unsigned char* frames, std::size_t count) {
  for (; count > 0 && complete_ < stretches_.count; --count, frames += layout_.frameSize()) {
    float* out = levels_.data() + present_;
    for (const std::size_t pixel : pixels_) {
      const unsigned char* const at = frames + pixel * bytesOf(layout_.samples);
      *out = layout_.samples == Samples::k8Bit ? static_cast<float>(*at)
                                               : static_cast<float>(at[0] | at[1] << 8) / 256.F;
      out += stretches_.length;
    }
    if (++present_ == stretches_.length) endStretch();
  }
}

void Candidates::endStretch() {
  const auto in = transform_.in();
  std::fill(in.begin(), in.end(), 0.F);
  for (auto first = levels_.begin(); first != levels_.end();) {
    const auto end = first + static_cast<std::ptrdiff_t>(stretches_.length);
    std::vector<double> values(first, end);
    subtractTrend(values, window_);
    for (std::size_t i = 0; i < values.size(); ++i)
      in[i] = static_cast<float>(values[i] * window_[i]);
    const auto powers = transform_.powers();
    for (std::size_t k = 0; k < powers.size(); ++k) powers_[k] += static_cast<double>(powers[k]);
    first = end;
  }
  present_ = 0;
  ++complete_;
}

Spectrum Candidates::spectrum() const {
  const auto length = static_cast<double>(std::max<std::size_t>(stretches_.length, 1));
  Spectrum spectrum{
      rate_ / static_cast<double>(transform_.length()), rate_ / length, rate_ / 2, {}};
  if (complete_ == 0) return spectrum;
  const double scale = 2 / std::accumulate(window_.begin(), window_.end(), 0.0);
  const double count = static_cast<double>(pixels_.size()) * static_cast<double>(complete_);
  for (const double power : powers_) {
    spectrum.amplitudes.push_back(scale * std::sqrt(power / count));
  }
  spectrum.amplitudes[0] = 0;
  return spectrum;
}

std::vector<double> Candidates::frequencies(std::size_t most) const {
  std::vector<double> frequencies;
  for (const Peak& peak : peaksOf(spectrum(), most, kAboveAverage)) {
    frequencies.push_back(peak.frequency);
  }
  return frequencies;
}

}  // namespace KPF_TOOL

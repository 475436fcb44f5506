#include "tools/kpf/analysis/swing_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <utility>

#include "tools/kpf/analysis/box_mean.h"
#include "tools/kpf/analysis/frame_batch.h"
#include "tools/kpf/analysis/spectrum.h"
#include "tools/kpf/analysis/weighted_sums.h"

namespace KPF_TOOL {
namespace {

// Pixels that are worked on together: their levels of a batch fit the first cache.
constexpr std::size_t kTile = 256;
// Pixels to either side that are looked at together. Where the texture has no slope even a pixel
// that moves does not change, but one beside it does.
constexpr unsigned kReach = 2;
// A motion must be so many times stronger there than noise of the same variance would be.
constexpr float kSure = 4;

/// Takes off what of the weights answers to a mean and to a trend, and keeps the way they fade.
void forgetTrend(std::vector<double>& weights, const std::vector<double>& window) {
  const double middle = (static_cast<double>(weights.size()) - 1) / 2;
  double sum = 0, mean = 0, squares = 0, slope = 0;
  for (std::size_t n = 0; n < weights.size(); ++n) {
    const double t = static_cast<double>(n) - middle;
    sum += window[n];
    mean += weights[n];
    squares += window[n] * t * t;
    slope += weights[n] * t;
  }
  for (std::size_t n = 0; n < weights.size(); ++n) {
    const double t = static_cast<double>(n) - middle;
    weights[n] -= window[n] * (mean / sum + t * slope / squares);
  }
}

std::vector<float> inSingle(const std::vector<double>& values) {
  return {values.begin(), values.end()};
}

double squaresOf(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values) sum += value * value;
  return sum;
}

}  // namespace

SwingMap::SwingMap(const PictureLayout& layout, const Stretches& stretches, double rate,
                   std::vector<double> frequencies)
    : layout_(layout),
      stretches_(stretches),
      hertz_(std::move(frequencies)),
      window_(hannWindow(stretches.length)),
      base_(layout.frameSize()),
      sums_(layout.pixelCount()),
      squares_(layout.pixelCount()),
      variances_(layout.pixelCount()) {
  for (const double hertz : hertz_) frequencies_.push_back(prepared(hertz, rate));
}

SwingMap::Frequency SwingMap::prepared(double hertz, double rate) const {
  std::vector<double> cosines, sines;
  for (std::size_t n = 0; n < window_.size(); ++n) {
    const double phase = 2 * std::numbers::pi * hertz * static_cast<double>(n) / rate;
    cosines.push_back(window_[n] * std::cos(phase));
    sines.push_back(window_[n] * std::sin(phase));
  }
  forgetTrend(cosines, window_);
  forgetTrend(sines, window_);
  const std::vector<float> none(layout_.pixelCount());
  return {
      inSingle(cosines), inSingle(sines), none, none, none, squaresOf(cosines) + squaresOf(sines)};
}

void SwingMap::add(const unsigned char* frames, std::size_t count) {
  while (count > 0 && complete_ < stretches_.count) {
    const std::size_t taken = std::min(count, stretches_.length - present_);
    if (present_ == 0) std::copy_n(frames, base_.size(), base_.begin());
    accumulate(frames, taken);
    present_ += taken;
    if (present_ == stretches_.length) endStretch();
    frames += taken * layout_.frameSize();
    count -= taken;
  }
}

void SwingMap::accumulate(const unsigned char* frames, std::size_t count) {
  for (std::size_t first = 0; first < layout_.pixelCount(); first += kTile) {
    accumulateTile(frames, count, first, std::min(kTile, layout_.pixelCount() - first));
  }
}

void SwingMap::accumulateTile(const unsigned char* frames, std::size_t count, std::size_t first,
                              std::size_t pixels) {
  constexpr std::size_t kFrames = FrameBatch::kFrames;
  const SumKernels& kernels = sumKernels.inUse();
  // Frames that are not there keep levels of 0, and weigh nothing.
  std::array<float, kFrames * kTile> levels{};
  const std::size_t bytes = bytesOf(layout_.samples);
  for (std::size_t n = 0; n < count; ++n) {
    kernels.subtractLevels(frames + n * layout_.frameSize() + first * bytes,
                           base_.data() + first * bytes, layout_.samples, pixels,
                           levels.data() + n * kTile);
  }
  const LevelTile tile{levels.data(), kTile, pixels, kFrames};
  kernels.addSquares(tile, sums_.data() + first, squares_.data() + first);
  for (Frequency& frequency : frequencies_) {
    std::array<float, kFrames> cosines{}, sines{};
    std::copy_n(frequency.cosines.data() + present_, count, cosines.begin());
    std::copy_n(frequency.sines.data() + present_, count, sines.begin());
    kernels.addWeighted(tile, cosines.data(), frequency.real.data() + first);
    kernels.addWeighted(tile, sines.data(), frequency.imaginary.data() + first);
  }
}

void SwingMap::endStretch() {
  const auto length = static_cast<float>(stretches_.length);
  for (std::size_t i = 0; i < variances_.size(); ++i) {
    const float mean = sums_[i] / length;
    variances_[i] += std::max(squares_[i] / length - mean * mean, 0.F);
  }
  std::fill(sums_.begin(), sums_.end(), 0.F);
  std::fill(squares_.begin(), squares_.end(), 0.F);
  for (Frequency& one : frequencies_) {
    for (std::size_t i = 0; i < one.power.size(); ++i) {
      one.power[i] += one.real[i] * one.real[i] + one.imaginary[i] * one.imaginary[i];
    }
    std::fill(one.real.begin(), one.real.end(), 0.F);
    std::fill(one.imaginary.begin(), one.imaginary.end(), 0.F);
  }
  present_ = 0;
  ++complete_;
}

PictureMap SwingMap::amplitudes(std::size_t index) const {
  PictureMap map{layout_.width, layout_.height, frequencies_[index].power};
  const double weights = std::accumulate(window_.begin(), window_.end(), 0.0);
  const double scale =
      2 / weights / std::sqrt(static_cast<double>(std::max<std::uint64_t>(complete_, 1)));
  for (float& value : map.values) value = std::sqrt(value) * static_cast<float>(scale);
  return map;
}

PictureMap SwingMap::dominant() const {
  const std::vector<float> variances = boxMean(variances_, layout_.width, layout_.height, kReach);
  std::vector<float> highest(variances.size());
  PictureMap map{layout_.width, layout_.height, std::vector<float>(variances.size())};
  for (std::size_t k = 0; k < frequencies_.size(); ++k) {
    const auto noise = static_cast<float>(frequencies_[k].noise);
    const auto power = boxMean(frequencies_[k].power, layout_.width, layout_.height, kReach);
    for (std::size_t i = 0; i < power.size(); ++i) {
      if (power[i] <= highest[i] || power[i] < kSure * noise * variances[i]) continue;
      highest[i] = power[i];
      map.values[i] = static_cast<float>(hertz_[k]);
    }
  }
  return map;
}

}  // namespace KPF_TOOL

#include "tools/kpf/analysis/spectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "tools/kpf/analysis/transform.h"

namespace KPF_TOOL {

std::vector<double> hannWindow(std::size_t count) {
  std::vector<double> window(count);
  for (std::size_t i = 0; i < count; ++i) {
    // Half a step from either end, where the weight would be 0 and the value wasted.
    const double turn = (static_cast<double>(i) + 0.5) / static_cast<double>(count);
    window[i] = (1 - std::cos(2 * std::numbers::pi * turn)) / 2;
  }
  return window;
}

void subtractTrend(std::vector<double>& values, const std::vector<double>& window) {
  const double middle = (static_cast<double>(values.size()) - 1) / 2;
  double weights = 0, mean = 0, slope = 0, squares = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double t = static_cast<double>(i) - middle;
    weights += window[i];
    mean += window[i] * values[i];
    slope += window[i] * values[i] * t;
    squares += window[i] * t * t;
  }
  if (weights > 0) mean /= weights;
  if (squares > 0) slope /= squares;
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] -= mean + slope * (static_cast<double>(i) - middle);
  }
}

Spectrum spectrumOf(const Waveform& waveform) {
  std::vector<double> values = waveform.values();
  const double frames = static_cast<double>(std::max<std::size_t>(values.size(), 1));
  Spectrum spectrum{0, waveform.rate() / frames, waveform.rate() / 2, {}};
  if (values.size() < kFewestFrames) return spectrum;
  const std::vector<double> window = hannWindow(values.size());
  subtractTrend(values, window);
  // Zeros behind the values put a bin between every two.
  Transform transform(Transform::lengthFor(2 * values.size()));
  const auto in = transform.in();
  std::fill(in.begin(), in.end(), 0.F);
  for (std::size_t i = 0; i < values.size(); ++i) in[i] = static_cast<float>(values[i] * window[i]);
  const double scale = 2 / std::accumulate(window.begin(), window.end(), 0.0);
  for (const float power : transform.powers()) {
    spectrum.amplitudes.push_back(scale * std::sqrt(static_cast<double>(power)));
  }
  spectrum.amplitudes[0] = 0;
  spectrum.binWidth = waveform.rate() / static_cast<double>(transform.length());
  return spectrum;
}

}  // namespace KPF_TOOL

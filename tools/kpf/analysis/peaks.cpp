#include "tools/kpf/analysis/peaks.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>

namespace KPF_TOOL {
namespace {

// Single-precision transforms blur what is so much weaker than the strongest.
constexpr double kPrecision = 1e-5;
// Levels or pixels: what rounding makes of a waveform that stands still.
constexpr double kRounding = 1e-6;

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + std::ssize(values) / 2;
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// The top of the parabola through three bins in decibels, which a peak of Hann's window fits well.
Peak interpolated(const Spectrum& spectrum, std::size_t bin, double noise) {
  const auto& a = spectrum.amplitudes;
  // Beside a peak of that window no bin is lower than this; beside one of rounding it can be 0.
  const double lowest = a[bin] / 2;
  const double left = std::log(std::max(a[bin - 1], lowest));
  const double middle = std::log(a[bin]);
  const double right = std::log(std::max(a[bin + 1], lowest));
  const double curve = left - 2 * middle + right;
  const double shift = curve < 0 ? std::clamp((left - right) / (2 * curve), -0.5, 0.5) : 0;
  const double amplitude = std::exp(middle - (left - right) * shift / 4);
  return {(static_cast<double>(bin) + shift) * spectrum.binWidth, amplitude,
          noise > 0 ? amplitude / noise : std::numeric_limits<double>::infinity()};
}

/// How high the window lets a peak of height 1 reach, so many times the resolution beside it.
double leakage(double away) {
  if (away <= 2) return 1;  // the same peak
  return 1 / (std::numbers::pi * away * (away * away - 1));
}

bool isLeakage(const Peak& peak, const std::vector<Peak>& higher, const Spectrum& spectrum,
               double floor) {
  double height = 0;
  for (const Peak& other : higher) {
    // Frequencies below 0 and beyond Nyquist's mirror those in between, and leak as well.
    const double apart = std::abs(peak.frequency - other.frequency);
    const double sum = peak.frequency + other.frequency;
    for (const double away : {apart, sum, 2 * spectrum.nyquist - sum}) {
      height += other.amplitude * leakage(away / spectrum.resolution);
    }
  }
  // The sum is only about right, and noise rides on it.
  return peak.amplitude < 1.5 * height + (higher.empty() ? 0 : floor);
}

std::vector<Peak> localMaxima(const Spectrum& spectrum, double floor, double noise) {
  std::vector<Peak> peaks;
  const auto& a = spectrum.amplitudes;
  for (std::size_t k = 1; k + 1 < a.size(); ++k) {
    const bool top = a[k] > floor && a[k] >= a[k - 1] && a[k] > a[k + 1];
    if (top) peaks.push_back(interpolated(spectrum, k, noise));
  }
  std::sort(peaks.begin(), peaks.end(),
            [](const Peak& one, const Peak& other) { return one.amplitude > other.amplitude; });
  return peaks;
}

}  // namespace

std::vector<Peak> peaksOf(const Spectrum& spectrum, std::size_t most, double aboveNoise) {
  std::vector<Peak> kept;
  if (spectrum.amplitudes.empty()) return kept;
  const double noise = medianOf(spectrum.amplitudes);
  const double highest = *std::max_element(spectrum.amplitudes.begin(), spectrum.amplitudes.end());
  const double floor = std::max({aboveNoise * noise, kPrecision * highest, kRounding});
  std::vector<Peak> higher;  // slow ones too: they leak as well
  for (const Peak& peak : localMaxima(spectrum, floor, noise)) {
    if (kept.size() == most) break;
    if (isLeakage(peak, higher, spectrum, floor)) continue;
    higher.push_back(peak);
    if (peak.frequency >= kFewestCycles * spectrum.resolution) kept.push_back(peak);
  }
  return kept;
}

}  // namespace KPF_TOOL

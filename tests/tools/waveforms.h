// Waveforms and pictures made up for the tests of the analysis.
#ifndef TESTS_TOOLS_WAVEFORMS_H
#define TESTS_TOOLS_WAVEFORMS_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

#include "tools/kpf/analysis/picture.h"
#include "tools/kpf/analysis/waveform.h"

/// A sine of `amplitude` about `level`, at time `frame` / `rate`.
inline double swing(double frequency, double rate, std::size_t frame, double amplitude = 1,
                    double level = 0) {
  return level +
         amplitude * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(frame) / rate);
}

inline KPF_TOOL::Waveform sine(double frequency, double rate, std::size_t frames,
                               double amplitude = 1, double level = 0) {
  KPF_TOOL::Waveform waveform(rate);
  for (std::size_t n = 0; n < frames; ++n) {
    waveform.add(swing(frequency, rate, n, amplitude, level));
  }
  return waveform;
}

/// A scene of 64 x 48 pixels in which a textured disc in the middle may move under sensor noise.
class Scene {
 public:
  static constexpr unsigned kWidth = 64, kHeight = 48;
  static constexpr double kRadius = 14;

  explicit Scene(double noise, unsigned seed = 1) : noise_(0, noise), random_(seed) {}

  static bool moves(unsigned x, unsigned y) { return distance(x, y) < kRadius; }
  static double distance(unsigned x, unsigned y) {
    return std::hypot(static_cast<double>(x) - kWidth / 2., static_cast<double>(y) - kHeight / 2.);
  }

  /// The scene with the disc at (dx, dy), and `light` levels brighter all over.
  std::vector<unsigned char> frame(double dx, double dy, double light = 0) {
    std::vector<unsigned char> levels;
    for (unsigned y = 0; y < kHeight; ++y) {
      for (unsigned x = 0; x < kWidth; ++x) {
        const bool moving = moves(x, y);
        const double value =
            texture(moving ? x - dx : x, moving ? y - dy : y) + light + noise_(random_);
        levels.push_back(static_cast<unsigned char>(std::lround(value)));
      }
    }
    return levels;
  }

  static KPF_TOOL::PictureLayout layout() { return {kWidth, kHeight, KPF_TOOL::Samples::k8Bit}; }

 private:
  /// Waves of eight and nine pixels, along either axis.
  static double texture(double x, double y) {
    using std::numbers::pi;
    return 120 + 40 * std::sin(2 * pi * x / 8) + 40 * std::sin(2 * pi * y / 9);
  }

  std::normal_distribution<double> noise_;
  std::mt19937 random_;
};

#endif

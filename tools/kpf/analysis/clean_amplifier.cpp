#include "tools/kpf/analysis/clean_amplifier.h"

#include <algorithm>
#include <cmath>

namespace KPF_TOOL {
namespace {

constexpr int kWhite = 255;

/// Of a difference in a table that begins with the lowest one.
constexpr std::size_t indexOf(int difference) {
  return static_cast<std::size_t>(difference) + static_cast<std::size_t>(kWhite);
}

}  // namespace

// A reference r came of a sum from r * W to r * W + W - 1, and so of a mean from r * W / (W - 1) to
// one more than that.
CleanAmplifier::CleanAmplifier(int window, double gain) {
  const long long divisor = window;
  for (int r = 0; r <= kWhite; ++r) {
    const auto at = static_cast<std::size_t>(r);
    lowest_[at] = highest_[at] = r;
    if (window < 2) continue;
    const long long held = divisor - 1;
    lowest_[at] = static_cast<int>(std::min<long long>((r * divisor + held - 1) / held, kWhite));
    highest_[at] = static_cast<int>(std::min<long long>(r * divisor / held + 1, kWhite));
  }
  setGain(gain);
}

void CleanAmplifier::setGain(double gain) {
  for (int difference = -kWhite; difference <= kWhite; ++difference) {
    const double product = std::isnan(gain) || difference == 0 ? 0 : difference * gain;
    gained_[indexOf(difference)] =
        static_cast<int>(std::lround(std::clamp(product, -1.0 * kWhite, 1.0 * kWhite)));
  }
}

int CleanAmplifier::meanOf(unsigned char frame, unsigned char reference) const {
  return std::clamp<int>(frame, lowest_[reference], highest_[reference]);
}

void CleanAmplifier::amplify(std::span<const unsigned char> frame,
                             std::span<const unsigned char> reference,
                             std::span<unsigned char> out) const {
  for (std::size_t i = 0; i < out.size(); ++i) {
    const int difference = frame[i] - meanOf(frame[i], reference[i]);
    const int sum = frame[i] + gained_[indexOf(difference)];
    out[i] = static_cast<unsigned char>(std::clamp(sum, 0, kWhite));
  }
}

void CleanAmplifier::correct(std::span<const unsigned char> frame,
                             std::span<const unsigned char> reference,
                             std::span<unsigned char> out) const {
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = static_cast<unsigned char>(meanOf(frame[i], reference[i]));
  }
}

}  // namespace KPF_TOOL

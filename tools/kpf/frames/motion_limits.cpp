#include "tools/kpf/frames/motion_limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kCycles = 3;         // of the motion, in the window
constexpr std::uint64_t kShortestCycle = 2;  // frames: the highest frequency that they show
constexpr double kLevels = 256;              // of a sample
constexpr std::uint64_t kOneInSoMany = 100;  // pixels may wrap without a word

/// The lowest frequency whose window of three cycles is full with `frames` frames, the newest
/// included. Rounded up to three digits: a higher one needs fewer.
double fittingFrequency(double rate, std::uint64_t frames) {
  const std::uint64_t cycle = (frames + 1) / kCycles;  // whole frames
  const double lowest = rate / static_cast<double>(cycle);
  const double step = std::pow(10.0, std::floor(std::log10(lowest)) - 2);
  return std::ceil(lowest / step - 1e-6) * step;
}

std::string adviceFor(double rate, std::uint64_t frames) {
  const std::uint64_t fewest = kCycles * kShortestCycle - 1;
  if (frames < fewest) return fmt::format("Give a clip of at least {} frames.", fewest);
  const double highest = rate / kShortestCycle;
  const double lowest = std::min(fittingFrequency(rate, frames), highest);
  const std::string range = lowest < highest ? fmt::format("from {:g} to {:g}", lowest, highest)
                                             : fmt::format("of {:g}", highest);
  return fmt::format("Choose a --frequency {}, or a longer clip.", range);
}

}  // namespace

std::optional<TooFewFrames> tooFewFrames(double rate, std::uint64_t needed, std::uint64_t there) {
  if (there >= needed) return std::nullopt;
  const std::string are = there == 1 ? "is 1" : fmt::format("are {}", there);
  return TooFewFrames{
      fmt::format("the window needs {}, and there {}", countText(needed, "frame"), are),
      adviceFor(rate, there)};
}

Wrapping::Wrapping(double gain)
    : gain_(gain),
      smallest_(gain > 0 ? static_cast<int>(std::min(std::ceil(kLevels / gain), kLevels)) : 256) {}

void Wrapping::add(const std::vector<unsigned char>& frame,
                   const std::vector<unsigned char>& reference) {
  std::uint64_t wrapped = 0;
  for (std::size_t i = 0; i < frame.size(); ++i) {
    const int difference = frame[i] - reference[i];
    wrapped += difference >= smallest_ ? 1U : 0U;
    largest_ = std::max(largest_, difference);
  }
  wrapped_ += wrapped;
  pixels_ += frame.size();
}

std::string Wrapping::remark() const {
  if (wrapped_ * kOneInSoMany <= pixels_) return "";
  const double share = 100.0 * static_cast<double>(wrapped_) / static_cast<double>(pixels_);
  // Cut to a tenth: the next one would wrap.
  const double gain = std::floor((kLevels - 0.01) / largest_ * 10) / 10;
  return fmt::format(
      "{:.1f} % of the pixels wrap at a gain of {:g}, and are dark where they should be bright; "
      "with "
      "--gain {:g} none would",
      share, gain_, gain);
}

}  // namespace KPF_TOOL

#include "tools/kpf/recording/call_times.h"

#include <bit>
#include <cmath>

namespace KPF_TOOL {

void CallTimes::add(std::chrono::nanoseconds duration) {
  // A clock that went backwards tells nothing.
  duration = std::max(duration, std::chrono::nanoseconds{0});
  ++counts_[stepOf(static_cast<std::uint64_t>(duration.count()))];
  ++calls_;
  longest_ = std::max(longest_, duration);
}

std::chrono::nanoseconds CallTimes::within(double share) const {
  const double wanted = std::ceil(share * static_cast<double>(calls_));
  std::uint64_t seen = 0;
  for (std::size_t step = 0; step < kSteps; ++step) {
    seen += counts_[step];
    if (seen == 0 || static_cast<double>(seen) < wanted) continue;
    return std::min(longest_, std::chrono::nanoseconds{upperEnd(step)});
  }
  return longest_;
}

/// The power of two, and the five bits below its highest.
std::size_t CallTimes::stepOf(std::uint64_t duration) {
  const unsigned width = static_cast<unsigned>(std::bit_width(duration));
  const unsigned shift = width > kStepBits + 1 ? width - kStepBits - 1 : 0;
  return (std::size_t{shift} << kStepBits) + static_cast<std::size_t>(duration >> shift);
}

std::uint64_t CallTimes::upperEnd(std::size_t step) {
  const std::size_t shift = step < (2U << kStepBits) ? 0 : (step >> kStepBits) - 1;
  return ((step - (shift << kStepBits) + 1) << shift) - 1;
}

}  // namespace KPF_TOOL

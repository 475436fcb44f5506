// How long the calls took that wrote records.
#ifndef KPF_CALL_TIMES_H
#define KPF_CALL_TIMES_H

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace KPF_TOOL {

/// Counts durations by their size, in as little memory for a day's frames as for none: what they
/// are counted by grows with them, by a thirty-second part from one to the next.
class CallTimes {
 public:
  void add(std::chrono::nanoseconds duration);

  /// What `share` of the calls did not exceed, rounded up to what is counted by; 0 without any.
  std::chrono::nanoseconds within(double share) const;
  std::chrono::nanoseconds longest() const { return longest_; }

 private:
  static constexpr unsigned kStepBits = 5;
  // Above the steps that are exact, 32 for each power of two that 63 bits hold.
  static constexpr std::size_t kSteps = (63 - kStepBits + 1) << kStepBits;

  static std::size_t stepOf(std::uint64_t duration);
  static std::uint64_t upperEnd(std::size_t step);

  std::array<std::uint64_t, kSteps> counts_{};
  std::uint64_t calls_ = 0;
  std::chrono::nanoseconds longest_{};
};

}  // namespace KPF_TOOL

#endif

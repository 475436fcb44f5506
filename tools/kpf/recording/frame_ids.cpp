#include "tools/kpf/recording/frame_ids.h"

#include <algorithm>
#include <cmath>

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kCycle = 65535;  // ids of 16 bits, without 0
constexpr double kMostDue = 1e12;        // frames; whatever a clock may claim

}  // namespace

std::optional<std::uint64_t> FrameIds::placeOf(std::uint64_t id, double due) {
  wide_ = wide_ || id > kCycle;
  if (begun_) {
    const std::int64_t step = stepTo(id, due);
    if (step <= 0) return std::nullopt;
    place_ += static_cast<std::uint64_t>(step);
  }
  begun_ = true;
  last_ = id;
  return place_;
}

/// Of all steps that lead from the last id to this one, that nearest to what is due.
std::int64_t FrameIds::stepTo(std::uint64_t id, double due) const {
  if (wide_) return static_cast<std::int64_t>(id - last_);
  const std::uint64_t within = (id + kCycle - last_ % kCycle) % kCycle;
  const double expected = std::clamp(due, 1.0, kMostDue);
  const double cycles = std::round((expected - static_cast<double>(within)) / kCycle);
  return static_cast<std::int64_t>(within) +
         static_cast<std::int64_t>(cycles) * static_cast<std::int64_t>(kCycle);
}

}  // namespace KPF_TOOL

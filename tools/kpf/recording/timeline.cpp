#include "tools/kpf/recording/timeline.h"

#include <algorithm>
#include <cmath>

namespace KPF_TOOL {
namespace {

constexpr double kFarthest = 1e15;  // places; beyond, a double does not hold every whole number

constexpr double kStepsOff = 0.75;         // of a frame time; rounding alone is off by a half
constexpr double kCoarsestTimes = 1.1e-3;  // seconds; many containers count milliseconds
constexpr double kClocksApart = 1e-4;      // by which two clocks may differ without any loss

}  // namespace

std::uint64_t Timeline::placeOf(std::optional<double> time) {
  std::uint64_t place = next_;
  if (time) {
    if (!origin_) origin_ = *time - static_cast<double>(next_) / pace();
    const double due = std::round((*time - *origin_) * pace());
    // Never backwards, and never two frames at one place.
    if (fillGaps_ && due > 0) {
      place = std::max(place, static_cast<std::uint64_t>(std::min(due, kFarthest)));
    }
    watch(*time - *origin_, place);
  }
  next_ = place + 1;
  return place;
}

double Timeline::inputSeconds() const { return latest_ + 1 / pace(); }

void Timeline::watch(double time, std::uint64_t place) {
  latest_ = std::max(latest_, time);
  const double off = std::abs(time - static_cast<double>(place) / pace());
  if (off > std::max(kStepsOff / pace(), kCoarsestTimes) + kClocksApart * std::abs(time)) {
    moved_ = true;
  }
}

}  // namespace KPF_TOOL

#include "tools/kpf/recording/timeline.h"

#include <algorithm>
#include <cmath>

namespace KPF_TOOL {
namespace {

constexpr double kFarthest = 1e15;  // places; beyond, a double does not hold every whole number

}  // namespace

std::uint64_t Timeline::placeOf(std::optional<double> time) {
  std::uint64_t place = next_;
  if (fillGaps_ && time) {
    if (!origin_) origin_ = *time - static_cast<double>(next_) / rate_;
    const double due = std::round((*time - *origin_) * rate_);
    // Never backwards, and never two frames at one place.
    if (due > 0) place = std::max(place, static_cast<std::uint64_t>(std::min(due, kFarthest)));
  }
  next_ = place + 1;
  return place;
}

}  // namespace KPF_TOOL

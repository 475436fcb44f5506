#include "tools/kpf/recording/camera_clock.h"

#include <algorithm>
#include <cmath>

namespace KPF_TOOL {
namespace {

constexpr double kSecond = 1e9;       // in nanoseconds
constexpr std::uint64_t kGroup = 32;  // frames of which the swiftest tells the delay

}  // namespace

std::uint64_t CameraClock::timeOf(std::uint64_t place, const LiveFrame& frame) {
  if (!begun_) {
    begun_ = true;
    first_ = frame.arrival;
    missing_ = kind_ == ClockKind::kCamera && frame.cameraTime == 0;
    anchor(frame);
  }
  std::uint64_t time = frame.arrival;
  if (kind_ == ClockKind::kRate) {
    time = first_ +
           static_cast<std::uint64_t>(std::llround(static_cast<double>(place) / rate_ * kSecond));
  } else if (kind_ == ClockKind::kCamera && !missing_) {
    time = cameraTime(frame);
  }
  last_ = std::max(last_, time);
  return last_;
}

std::uint64_t CameraClock::cameraTime(const LiveFrame& frame) {
  if (frame.cameraTime < lastCamera_) {
    ++resets_;
    anchor(frame);
  }
  lastCamera_ = frame.cameraTime;
  const auto time =
      static_cast<std::uint64_t>(static_cast<std::int64_t>(frame.cameraTime) + offset_);
  noteDelay(static_cast<std::int64_t>(frame.arrival - time));
  return time;
}

void CameraClock::anchor(const LiveFrame& frame) {
  offset_ = static_cast<std::int64_t>(frame.arrival - frame.cameraTime);
  lastCamera_ = frame.cameraTime;
  seen_ = 0;
  firstDelay_ = present_ = latestDelay_ = kNever;
}

void CameraClock::noteDelay(std::int64_t delay) {
  if (seen_ < kGroup) firstDelay_ = std::min(firstDelay_, delay);
  present_ = std::min(present_, delay);
  if (++seen_ % kGroup != 0) return;
  latestDelay_ = present_;
  present_ = kNever;
}

double CameraClock::drift() const {
  if (latestDelay_ == kNever) return 0;
  return static_cast<double>(latestDelay_ - firstDelay_) / kSecond;
}

}  // namespace KPF_TOOL

// What time a frame is stamped with.
#ifndef KPF_CAMERA_CLOCK_H
#define KPF_CAMERA_CLOCK_H

#include <cstdint>
#include <limits>

#include "tools/kpf/frames/live_source.h"

namespace KPF_TOOL {

/// Whose clock is believed.
enum class ClockKind {
  kCamera,  // the camera's steps, from the system's time of the first frame on
  kSystem,  // when frames arrive
  kRate     // even steps of the frame rate, from the first frame on
};

/// Times that never go backwards, in nanoseconds since 1970.
class CameraClock {
 public:
  /// @param rate frames per second.
  CameraClock(ClockKind kind, double rate) : kind_(kind), rate_(rate) {}

  /// Of a good frame; to be asked once for each, in their order.
  /// @param place counted from 0.
  std::uint64_t timeOf(std::uint64_t place, const LiveFrame& frame);

  /// Seconds by which frames arrive later now, by the camera's clock, than at first: what that
  /// clock lost against the system's. Of many frames the swiftest counts, since any may be held up.
  double drift() const;

  /// How often the camera's clock was set back.
  unsigned resets() const { return resets_; }
  /// The camera has no clock, and the system's was taken.
  bool isMissing() const { return missing_; }

 private:
  std::uint64_t cameraTime(const LiveFrame& frame);
  void anchor(const LiveFrame& frame);
  void noteDelay(std::int64_t delay);

  static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

  ClockKind kind_;
  double rate_;
  bool begun_ = false;
  bool missing_ = false;
  std::uint64_t first_ = 0;       // arrival of the first frame
  std::uint64_t last_ = 0;        // the time that was given last
  std::uint64_t lastCamera_ = 0;  // the camera's time of that frame
  std::int64_t offset_ = 0;       // from the camera's time to the system's
  unsigned resets_ = 0;
  std::uint64_t seen_ = 0;             // frames since the anchor
  std::int64_t firstDelay_ = kNever;   // the least of the first frames
  std::int64_t present_ = kNever;      // the least of the frames of the present group so far
  std::int64_t latestDelay_ = kNever;  // the least of the group before
};

}  // namespace KPF_TOOL

#endif

// How many frames a second a disk takes without a late one.
//
// A disk that takes so many megabytes a second on the average may still stop for a moment every now
// and then, and a camera does not wait. So frames are recorded at a rate, as a camera would bring
// them, and each is looked at; the rate that holds is searched.
#ifndef KPF_DISK_TRIAL_H
#define KPF_DISK_TRIAL_H

#include <cstdint>
#include <functional>

namespace KPF_TOOL {

/// Seconds from any beginning; tests have one of their own.
class TrialClock {
 public:
  virtual ~TrialClock() = default;
  virtual double now() = 0;
  /// Returns at `time`, or at once if that is past.
  virtual void waitUntil(double time) = 0;
};

/// The clock on the wall. It wakes up in time for some thousand frames a second.
class WallClock : public TrialClock {
 public:
  double now() override;
  void waitUntil(double time) override;
};

/// One recording of a trial. Times are in seconds.
struct Leg {
  double rate = 0;           // frames a second that were due; as fast as it went where none were
  std::uint64_t frames = 0;  // that were recorded
  double seconds = 0;        // from the first frame on
  std::uint64_t late = 0;    // frames that were done more than a frame time after they were due
  double latest = 0;         // from when a frame was due until it was done, the worst
  double worstCall = 0;
  bool cutShort = false;  // somebody wished to stop

  bool holds() const { return frames > 0 && late == 0 && !cutShort; }
};

/// What a leg is asked for.
struct LegPlan {
  double rate = 0;           // frames a second; 0: as fast as it goes
  double seconds = 0;        // at most
  std::uint64_t frames = 0;  // at most
};

/// Records frames one by one. @param addFrame what a camera application would wait for.
/// @param stop asked before each frame.
Leg runLeg(TrialClock& clock, const LegPlan& plan, const std::function<void()>& addFrame,
           const std::function<bool()>& stop);

/// What came out of it.
struct DiskSpeed {
  Leg fastest;  // as fast as it went
  Leg held;     // the longest leg at the rate that holds; without frames where none did
  bool cutShort = false;
};

/// Searches the highest rate that holds: half of the time goes into the search, the other half into
/// one long leg at the rate it found. Where that is late after all the next one goes slower, in the
/// same time again.
/// @param seconds of recording.
/// @param runLegAt a leg of so many seconds at a rate; 0: as fast as it goes.
DiskSpeed searchSpeed(double seconds,
                      const std::function<Leg(double rate, double seconds)>& runLegAt);

}  // namespace KPF_TOOL

#endif

// The loop between a camera and the recordings of it.
#ifndef KPF_LIVE_RECORDER_H
#define KPF_LIVE_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>

#include "tools/kpf/frames/live_source.h"
#include "tools/kpf/recording/camera_clock.h"
#include "tools/kpf/recording/frame_ids.h"
#include "tools/kpf/recording/record_ring.h"
#include "tools/kpf/recording/trigger.h"

namespace KPF_TOOL {

/// Where the records go: one recording behind the other.
class ClipSink {
 public:
  virtual ~ClipSink() = default;
  virtual void begin() = 0;
  /// @param record with its time; the number is given here.
  virtual void add(unsigned char* record) = 0;
  virtual void addPlaceholder() = 0;
  virtual void end() = 0;
};

/// When a recording ends, counted from its trigger, or from its first frame where there is none.
struct ClipLimit {
  std::uint64_t frames = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t nanoseconds = std::numeric_limits<std::uint64_t>::max();
};

struct LivePlan {
  double rate = 0;  // frames per second; 0 where nobody knows
  ClockKind clock = ClockKind::kCamera;
  std::size_t recordSize = 0;
  Trigger* trigger = nullptr;  // nothing is written before it fires; null: all is, from the start
  std::uint64_t before = 0;    // records before the trigger that are kept
  ClipLimit limit;
  bool again = false;  // waits for the trigger once more when a recording has ended
};

/// What became of the frames, all recordings and the waits between them together.
struct LiveTally {
  std::uint64_t received = 0;    // good frames
  std::uint64_t lost = 0;        // places of which nothing came
  std::uint64_t incomplete = 0;  // places of which only a part came
  std::uint64_t late = 0;        // good frames whose place was a placeholder by then
};

/**
 * Gives every frame that the camera counted a place: its record, or a placeholder.
 *
 * Before the trigger records go through a ring that forgets. When it fires, the ring is written
 * while the camera goes on, two records a frame and all while no frame waits, so that it is not
 * the camera's buffers that pay for the past.
 */
class LiveRecorder {
 public:
  LiveRecorder(LiveSource& source, ClipSink& sink, const LivePlan& plan);

  /// Until the limit, the camera's end, or somebody wants to stop; whatever is held is written
  /// then.
  /// @param stop asked for each frame, and now and then while none comes.
  void run(const std::function<bool()>& stop, const std::function<void()>& progress);

  const LiveTally& tally() const { return tally_; }
  const CameraClock& clock() const { return clock_; }
  bool isArmed() const { return !recording_; }
  std::size_t held() const { return ring_.size(); }
  unsigned mostWaiting() const { return mostWaiting_; }
  /// Records of the present recording, those that are still held included.
  std::uint64_t accepted() const { return accepted_; }

 private:
  void handle(const LiveFrame& frame);
  void take(const LiveFrame& frame);
  bool fill(std::uint64_t gap);
  void put(unsigned char* record);
  void beginClip();
  void endClip();
  void write(unsigned char* record);
  void writeOldest();
  void catchUp();
  void finish();
  double dueAt(const LiveFrame& frame);

  LiveSource& source_;
  ClipSink& sink_;
  LivePlan plan_;
  FrameIds ids_;
  CameraClock clock_;
  RecordRing ring_;
  LiveTally tally_;
  std::function<bool()> stop_;
  bool recording_ = false;
  bool done_ = false;
  bool begun_ = false;                 // a good frame was seen
  std::uint64_t next_ = 0;             // the place that is due
  std::uint64_t incomplete_ = 0;       // incomplete frames since the last good one
  std::uint64_t accepted_ = 0;         // records of this recording
  std::uint64_t counted_ = 0;          // those that the limit counts
  std::optional<std::uint64_t> from_;  // the time from which the limit counts
  double lastArrival_ = 0;             // nanoseconds
  double lastCameraTime_ = 0;
  unsigned mostWaiting_ = 0;
};

}  // namespace KPF_TOOL

#endif

// A stream under a stop watch.
#ifndef KPF_TIMED_STREAM_H
#define KPF_TIMED_STREAM_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include "tools/kpf/recording/call_times.h"
#include "tools/kpf/recording/record_stream.h"

namespace KPF_TOOL {

/// Passes everything on, and measures how long that takes and how evenly frames come.
class TimedStream : public RecordStream {
 public:
  using Clock = std::function<std::chrono::nanoseconds()>;

  /// The system's clock that never jumps.
  static std::chrono::nanoseconds now();

  /// @param rate frames per second that are due.
  TimedStream(RecordStream& stream, double rate, Clock clock = now);

  void addImage(const unsigned char* image) override;
  void addPlaceholder() override;

  const CallTimes& calls() const { return calls_; }

  /// Frames that came more than a frame time behind the one at which they were due, counted from
  /// the frame before: whoever was late once is not late for ever, and a source whose clock differs
  /// from ours is never. Of a source that sets the pace only; a file gives frames when it is asked.
  std::uint64_t late() const { return late_; }

 private:
  void note(std::chrono::nanoseconds arrival);

  RecordStream& stream_;
  double rate_;
  Clock clock_;
  CallTimes calls_;
  std::optional<std::chrono::nanoseconds> previous_;  // when the frame before came
  double places_ = 0;                                 // from that frame to this one
  std::uint64_t late_ = 0;
};

}  // namespace KPF_TOOL

#endif

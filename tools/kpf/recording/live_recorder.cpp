#include "tools/kpf/recording/live_recorder.h"

#include <algorithm>

#include "tools/kpf/recording/record_stamp.h"

namespace KPF_TOOL {

LiveRecorder::LiveRecorder(LiveSource& source, ClipSink& sink, const LivePlan& plan)
    : source_(source),
      sink_(sink),
      plan_(plan),
      clock_(plan.clock, plan.rate),
      ring_(plan.before, plan.recordSize) {}

void LiveRecorder::run(const std::function<bool()>& stop, const std::function<void()>& progress) {
  stop_ = stop;
  try {
    while (!done_ && !stop_()) {
      const LiveFrame frame = source_.next();
      if (frame.state == LiveFrame::State::kEnd) break;
      handle(frame);
      progress();
    }
  } catch (...) {  // what came before the trouble is recorded all the same
    finish();
    throw;
  }
  finish();
}

void LiveRecorder::handle(const LiveFrame& frame) {
  switch (frame.state) {
    case LiveFrame::State::kGood:
      mostWaiting_ = std::max(mostWaiting_, source_.waiting());
      take(frame);
      break;
    case LiveFrame::State::kIncomplete:
      ++incomplete_;
      break;
    default:
      if (!recording_ && plan_.trigger != nullptr && plan_.trigger->fires(nullptr)) beginClip();
  }
  catchUp();
}

/// A failed buffer may still carry the id of its last use, so it is the good frames that tell how
/// many there were between them.
void LiveRecorder::take(const LiveFrame& frame) {
  const auto place = ids_.placeOf(frame.id, dueAt(frame));
  if (!place) {
    ++tally_.late;
    return;
  }
  const std::uint64_t time = clock_.timeOf(*place, frame);
  stampTime(frame.record, time);
  if (!begun_ && plan_.trigger == nullptr) beginClip();
  // Before the first good frame nothing tells the ids, but that they came.
  const bool filled = fill(begun_ ? *place - next_ : incomplete_);
  begun_ = true;
  next_ = *place + 1;
  if (!filled) return;
  if (recording_ && from_ && time - *from_ >= plan_.limit.nanoseconds) endClip();
  if (done_) return;
  ++tally_.received;
  if (!recording_ && plan_.trigger->fires(frame.record + KPF_FORMAT::FRAME_HEADER::kSize))
    beginClip();
  if (recording_ && !from_) from_ = time;
  put(frame.record);
}

/// Frames since the last good one, by the time that has passed: by the lesser of both clocks, since
/// either may be set forward.
double LiveRecorder::dueAt(const LiveFrame& frame) {
  double passed = static_cast<double>(frame.arrival) - lastArrival_;
  if (frame.cameraTime != 0) {
    passed = std::min(passed, static_cast<double>(frame.cameraTime) - lastCameraTime_);
  }
  lastArrival_ = static_cast<double>(frame.arrival);
  lastCameraTime_ = static_cast<double>(frame.cameraTime);
  return passed / 1e9 * plan_.rate;
}

/// @return whether the place behind the gap is still wanted.
bool LiveRecorder::fill(std::uint64_t gap) {
  const std::uint64_t incomplete = std::min(gap, incomplete_);
  incomplete_ = 0;
  for (std::uint64_t i = 0; i < gap; ++i) {
    if (done_ || stop_()) return false;
    ++(i < incomplete ? tally_.incomplete : tally_.lost);
    put(nullptr);
  }
  return !done_;
}

/// @param record null for a placeholder.
void LiveRecorder::put(unsigned char* record) {
  if (!recording_) {
    ring_.push(record);
    return;
  }
  ++accepted_;
  if (ring_.isEmpty()) {
    write(record);
  } else {
    if (ring_.isFull()) writeOldest();
    ring_.push(record);
  }
  if (++counted_ >= plan_.limit.frames) endClip();
}

void LiveRecorder::beginClip() {
  sink_.begin();
  recording_ = true;
  accepted_ = ring_.size();
  counted_ = 0;
  from_.reset();
}

void LiveRecorder::endClip() {
  while (!ring_.isEmpty()) writeOldest();
  sink_.end();
  recording_ = false;
  done_ = !plan_.again;
  if (plan_.trigger != nullptr) plan_.trigger->arm();
}

void LiveRecorder::write(unsigned char* record) {
  if (record == nullptr) {
    sink_.addPlaceholder();
  } else {
    sink_.add(record);
  }
}

void LiveRecorder::writeOldest() {
  write(ring_.front());
  ring_.pop();
}

/// Writes what is held from before the trigger while the camera leaves time for it.
void LiveRecorder::catchUp() {
  for (int i = 0; recording_ && !ring_.isEmpty() && (i < 2 || source_.waiting() == 0); ++i) {
    writeOldest();
  }
}

/// The frames that came incomplete behind the last good one have their places too.
void LiveRecorder::finish() {
  if (!recording_) return;
  for (; incomplete_ > 0 && recording_; --incomplete_) {
    ++tally_.incomplete;
    put(nullptr);
  }
  if (recording_) endClip();
}

}  // namespace KPF_TOOL

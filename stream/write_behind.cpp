#include "stream/write_behind.h"

#include <algorithm>

namespace VLM_KPF {

// The start comes before the wait, so that the device has work meanwhile. Nobody waits for what was
// started just now: a frame larger than the window would be written to the device by its own call.
void WriteBehind::advance(int file) noexcept {
  const std::uint64_t before = started_;
  started_ = end_ / kChunk * kChunk;
  cache_.startWriting(file, {before, started_});
  dropTail();
  const std::uint64_t behind = started_ - std::min(started_, kWindow);
  const std::uint64_t drop = std::min(before, behind);
  if (drop <= dropped_) return;
  cache_.dropWritten(file, {dropped_, drop});
  dropped_ = drop;
}

void WriteBehind::nextFile(int file) noexcept {
  releaseTail();
  if (end_ >= kWindow) {
    if (end_ > started_) cache_.startWriting(file, {started_, end_});
    tail_ = {dropped_, end_};
    tailFile_ = cache_.keepOpen(file);
  }
  end_ = started_ = dropped_ = 0;
}

void WriteBehind::finish() noexcept {
  releaseTail();
  end_ = started_ = dropped_ = 0;
}

// The window reaches back from the new file into the old one, as if they were one.
void WriteBehind::dropTail() noexcept {
  if (tailFile_ < 0) return;
  const std::uint64_t held = kWindow - std::min(started_, kWindow);
  const std::uint64_t drop = held == 0 ? tail_.end : (tail_.end - held) / kChunk * kChunk;
  if (drop > tail_.begin) {
    cache_.dropWritten(tailFile_, {tail_.begin, drop});
    tail_.begin = drop;
  }
  if (held == 0) releaseTail();
}

void WriteBehind::releaseTail() noexcept {
  if (tailFile_ >= 0) cache_.release(tailFile_);
  tailFile_ = -1;
}

}  // namespace VLM_KPF

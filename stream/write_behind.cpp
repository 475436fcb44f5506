#include "stream/write_behind.h"

#include <algorithm>

namespace VLM_KPF {
namespace {

constexpr std::uint64_t wholeChunks(std::uint64_t bytes) {
  return bytes / WriteBehind::kChunk * WriteBehind::kChunk;
}

/// With what lay across the border of the bytes given back before.
ByteRange withPieceBefore(ByteRange bytes) {
  return {bytes.begin - std::min(bytes.begin, WriteBehind::kLargestPiece), bytes.end};
}

}  // namespace

// Until so much is written, nothing is dropped.
bool WriteBehind::prepare(const std::filesystem::path& folder, std::uint64_t record,
                          std::uint64_t expected) noexcept {
  if (expected < kSmall || record < kLargeRecord || record > kHugeRecord) return false;
  record_ = record;
  held_ = ((kWindow + kChunk) / record + 1) * record;
  pages_ = cache_.takePages(folder, held_);
  inPieces_ = pages_ >= 0;
  return true;
}

void WriteBehind::givePages() noexcept {
  held_ -= record_;
  cache_.keepPages(pages_, held_);
  if (held_ == 0) releasePages();
}

void WriteBehind::releasePages() noexcept {
  if (pages_ >= 0) cache_.release(pages_);
  pages_ = -1;
}

void WriteBehind::start(int file) noexcept {
  const std::uint64_t whole = wholeChunks(end_);
  cache_.startWriting(file, {started_, whole});
  started_ = whole;
}

// Nobody waits for the newest record, which was started just now: one larger than the window would
// be brought to the device by the call that follows it.
void WriteBehind::drop(int file) noexcept {
  const std::uint64_t behind = wholeChunks(std::min(end_ - kWindow, newest_));
  if (behind <= dropped_) return;
  cache_.dropWritten(file, withPieceBefore({dropped_, behind}));
  dropped_ = behind;
}

void WriteBehind::nextFile(int file) noexcept {
  releaseTail();
  if (end_ >= kWindow && !staysSmall_) {
    if (end_ > started_) cache_.startWriting(file, {started_, end_});
    tail_ = {dropped_, end_};
    tailFile_ = cache_.keepOpen(file);
  }
  end_ = started_ = dropped_ = 0;
}

void WriteBehind::finish() noexcept {
  releasePages();
  releaseTail();
  end_ = started_ = dropped_ = newest_ = 0;
}

// The window reaches back from the new file into the old one, as if they were one.
void WriteBehind::dropTail() noexcept {
  const std::uint64_t held = kWindow - std::min(end_, kWindow);
  const std::uint64_t newest = end_ == 0 ? newest_ : tail_.end;
  const std::uint64_t behind =
      held == 0 ? tail_.end : wholeChunks(std::min(tail_.end - held, newest));
  if (behind > tail_.begin) {
    cache_.dropWritten(tailFile_, withPieceBefore({tail_.begin, behind}));
    tail_.begin = behind;
  }
  if (held == 0) releaseTail();
}

void WriteBehind::releaseTail() noexcept {
  if (tailFile_ >= 0) cache_.release(tailFile_);
  tailFile_ = -1;
}

}  // namespace VLM_KPF

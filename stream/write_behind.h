// Keeps a long recording from filling the page cache: write-back that begins early, and pages that
// are given back soon.
#ifndef WRITE_BEHIND_H
#define WRITE_BEHIND_H

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include "stream/page_cache.h"

namespace VLM_KPF {

/**
 * Follows the one file that a writer fills, and advises the system about what lies behind it.
 *
 * Left alone, a system gathers a recording in memory until it finds that too much waits for the
 * device, and then stops the writer for tens or hundreds of milliseconds. Here every chunk goes to
 * the device as soon as it is full, and what lies a window behind is given back just before a
 * record takes new pages: so the same pages serve again at once, the device has had the time
 * between two frames for them, and no more than a window and two records ever wait.
 *
 * The first records have nothing behind them. Their pages are taken when the recording is prepared,
 * and one record's worth of them is given back before each, as later that of an earlier record.
 * Records are then written in small pieces, so that they take just the pages given back.
 *
 * No thread, no buffer, nothing that fails. The writer's bytes are with the system before it is
 * told here; a file that will stay small keeps all its pages.
 */
class WriteBehind {
 public:
  // All by measurement, see docs/performance.md.
  static constexpr std::uint64_t kChunk = std::uint64_t{2} << 20;
  static constexpr std::uint64_t kWindow = std::uint64_t{8} << 20;
  static constexpr std::uint64_t kSmall = std::uint64_t{32} << 20;
  // Below this a record takes few pages, and asking for them would cost more than they do.
  static constexpr std::uint64_t kLargeRecord = std::uint64_t{256} << 10;
  // Above it they are as many as a recording should not take from a disk before its first frame.
  static constexpr std::uint64_t kHugeRecord = std::uint64_t{64} << 20;
  // Systems hold files in pieces of up to some MiB and give back whole pieces only.
  static constexpr std::uint64_t kLargestPiece = std::uint64_t{8} << 20;

  explicit WriteBehind(PageCache& cache) : cache_(cache) {}
  ~WriteBehind() { finish(); }
  WriteBehind(const WriteBehind&) = delete;
  WriteBehind& operator=(const WriteBehind&) = delete;

  /// A recording begins in `folder`, with records of so many bytes and `expected` bytes of them in
  /// its first file. @return whether these are large and many enough to prepare anything for.
  bool prepare(const std::filesystem::path& folder, std::uint64_t record,
               std::uint64_t expected) noexcept;

  /// A new file begins, which will hold `expected` bytes if all goes on as announced.
  void begin(std::uint64_t expected) noexcept { staysSmall_ = expected < kSmall; }

  /// A record will be written to `file` now.
  void makeRoom(int file) noexcept {
    if (pages_ >= 0) givePages();
    if (tailFile_ >= 0) dropTail();
    if (end_ >= dropped_ + kWindow + kChunk && !staysSmall_) drop(file);
  }

  /// How many of `left` bytes that come at byte `at` of the file one call should write.
  std::uint64_t atOnce(std::uint64_t at, std::uint64_t left) const noexcept {
    return inPieces_ ? std::min(left, PageCache::kPiece - at % PageCache::kPiece) : left;
  }

  /// `file` has been written up to byte `end`.
  void written(int file, std::uint64_t end) noexcept {
    newest_ = end_;
    end_ = end;
    if (end >= started_ + kChunk) start(file);
  }

  /// `file` will be closed now, and begin() tells of a new one. The last window of the old one is
  /// given back while the new one grows.
  void nextFile(int file) noexcept;

  /// Forgets the files. What the last one has in the page cache stays there.
  void finish() noexcept;

 private:
  void givePages() noexcept;
  void releasePages() noexcept;
  void start(int file) noexcept;
  void drop(int file) noexcept;
  void dropTail() noexcept;
  void releaseTail() noexcept;

  PageCache& cache_;
  bool staysSmall_ = false;
  bool inPieces_ = false;      // records are written so that their pages serve again
  std::uint64_t end_ = 0;      // bytes of the file that were written,
  std::uint64_t started_ = 0;  // that are on their way to the device: whole chunks,
  std::uint64_t newest_ = 0;   // that were there before the last record,
  std::uint64_t dropped_ = 0;  // and whose pages were given back
  int pages_ = -1;             // what holds the pages for the first records,
  std::uint64_t held_ = 0;     // so many bytes of them,
  std::uint64_t record_ = 0;   // of which each takes these
  int tailFile_ = -1;          // the file before, as long as it has pages to give back
  ByteRange tail_;             // those pages
};

}  // namespace VLM_KPF

#endif

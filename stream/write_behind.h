// Keeps a long recording from filling the page cache: write-back that begins early, and pages that
// are given back soon.
#ifndef WRITE_BEHIND_H
#define WRITE_BEHIND_H

#include <cstdint>

#include "stream/page_cache.h"

namespace VLM_KPF {

/**
 * Follows the one file that a writer fills, and advises the system about what lies behind it.
 *
 * Left alone, a system gathers a recording in memory until it finds that too much waits for the
 * device, and then stops the writer for tens or hundreds of milliseconds. Here every chunk goes to
 * the device as soon as it is full, and its pages are given back once the writer is a window ahead:
 * no more than a window and a chunk ever wait, and the same pages serve again.
 *
 * No thread, no memory, nothing that fails. The writer's bytes are with the system before it is
 * told here; a file smaller than the window keeps all its pages.
 */
class WriteBehind {
 public:
  // Both by measurement, see docs/performance.md. Systems hold files in pieces of up to some MiB
  // and give back whole pieces only: all borders are multiples of the chunk.
  static constexpr std::uint64_t kChunk = std::uint64_t{8} << 20;
  static constexpr std::uint64_t kWindow = std::uint64_t{32} << 20;

  explicit WriteBehind(PageCache& cache) : cache_(cache) {}
  ~WriteBehind() { finish(); }
  WriteBehind(const WriteBehind&) = delete;
  WriteBehind& operator=(const WriteBehind&) = delete;

  /// `file` has been written up to byte `end`.
  void written(int file, std::uint64_t end) noexcept {
    end_ = end;
    if (end >= started_ + kChunk) advance(file);
  }

  /// `file` will be closed now, and the next call of written() is about a new one. The last window
  /// of the old one is given back while the new one grows.
  void nextFile(int file) noexcept;

  /// Forgets the files. What the last one has in the page cache stays there.
  void finish() noexcept;

 private:
  void advance(int file) noexcept;
  void dropTail() noexcept;
  void releaseTail() noexcept;

  PageCache& cache_;
  std::uint64_t end_ = 0;      // bytes of the file that were written,
  std::uint64_t started_ = 0;  // that are on their way to the device: whole chunks,
  std::uint64_t dropped_ = 0;  // and whose pages were given back
  int tailFile_ = -1;          // the file before, as long as it has pages to give back
  ByteRange tail_;             // those pages
};

}  // namespace VLM_KPF

#endif

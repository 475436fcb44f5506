// The pages in which the operating system holds what a file was given, as far as a writer may
// advise about them.
#ifndef PAGE_CACHE_H
#define PAGE_CACHE_H

#include <cstdint>
#include <filesystem>

namespace VLM_KPF {

/// Bytes of a file, from the first to the one before `end`.
struct ByteRange {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  std::uint64_t size() const { return end - begin; }
  bool operator==(const ByteRange&) const = default;
};

/**
 * What a writer asks of the operating system beyond taking its bytes. All of it is advice: where it
 * fails, or where a system or file system does not know it, nothing is told and nothing is lost.
 *
 * Files go by descriptors. Tests put a double in the system's place.
 */
class PageCache {
 public:
  /// Linux keeps the pages of small pieces of files that were given back at hand, for each
  /// processor, and takes these first. Those of larger pieces go back to the memory of the whole
  /// machine, in which a virtual one may have to ask its host for every page that comes next.
  static constexpr std::uint64_t kPiece = std::uint64_t{32} << 10;

  /// Begins to bring the bytes to the device, without waiting for them.
  virtual void startWriting(int file, ByteRange bytes) noexcept = 0;

  /// Waits until the bytes are with the device, then gives back the pages that hold them.
  virtual void dropWritten(int file, ByteRange bytes) noexcept = 0;

  /// One more descriptor of an open file, which child processes do not inherit; -1: there is none.
  virtual int keepOpen(int file) noexcept = 0;

  /// Fills the pages that so many bytes take in `folder`, piece by piece and in no file that
  /// anybody sees. @return a descriptor that holds them and that child processes do not inherit;
  /// -1: none.
  virtual int takePages(const std::filesystem::path& folder, std::uint64_t bytes) noexcept = 0;

  /// Gives back the pages that takePages took, but those of the first `bytes`.
  virtual void keepPages(int pages, std::uint64_t bytes) noexcept = 0;

  /// Closes what keepOpen or takePages gave.
  virtual void release(int file) noexcept = 0;

  /// That of this system. Never destroyed: a writer may close itself while the process ends.
  static PageCache& system();

 protected:
  ~PageCache() = default;
};

}  // namespace VLM_KPF

#endif

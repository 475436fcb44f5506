// The page cache, left as it was found.
#ifndef KPF_READ_BEHIND_H
#define KPF_READ_BEHIND_H

#include <cstdint>
#include <deque>

namespace KPF_TOOL {

/// A file as far as the system keeps parts of it in memory. All of it is advice.
class CachedFile {
 public:
  virtual ~CachedFile() = default;
  /// Whether reading that byte would not touch the device; true also where nobody can tell.
  virtual bool isCached(std::uint64_t offset) const = 0;
  /// Gives back the memory that holds the bytes from `begin` to the one before `end`.
  virtual void forget(std::uint64_t begin, std::uint64_t end) const = 0;
};

/**
 * Whoever walks through a recording once would leave all of it in memory, in place of what other
 * programs need there. So what was not in memory before does not stay there: its pages are given
 * back once the walk is 32 MiB further. What was there already is left, because somebody may want
 * it again: a recording that was just made, or is looked at twice.
 */
class ReadBehind {
 public:
  /// To be told before bytes of the file are read.
  void reading(const CachedFile& file, std::uint64_t offset, std::uint64_t size,
               std::uint64_t fileSize);

 private:
  std::uint64_t entered_ = 0;  // chunks, from the file's first on, that were looked at
  std::deque<std::uint64_t>
      brought_;  // those that this walk brings into memory, not yet given back
};

}  // namespace KPF_TOOL

#endif

// A file that is read at any place: the one spot where the records meet the operating system.
#ifndef KPF_DATA_FILE_H
#define KPF_DATA_FILE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "tools/kpf/records/read_behind.h"

namespace KPF_TOOL {

/// Reads by calls, not through mapped memory: there a sector that the disk cannot read, and a file
/// that another program shortens, would end the process.
class DataFile : public CachedFile {
 public:
  /// Whatever has taken the file's place since it was found, a pipe included, does not block.
  /// @throws KPF_READER::RecordingError.
  explicit DataFile(const std::string& path);
  ~DataFile() override;
  DataFile(const DataFile&) = delete;
  DataFile& operator=(const DataFile&) = delete;

  /// Fills `into` from byte `offset` on. @return bytes that were there, fewer at the end of the
  /// file, and before a place that cannot be read.
  /// @throws KPF_READER::RecordingError when not even the first byte can be read.
  std::size_t read(std::uint64_t offset, std::span<unsigned char> into) const;

  /// The first byte from `offset` on that the disk holds: those before it take no room there and
  /// read as zero. Where the system cannot tell that is `offset` itself.
  std::uint64_t storedFrom(std::uint64_t offset) const;

  bool isCached(std::uint64_t offset) const override;
  void forget(std::uint64_t begin, std::uint64_t end) const override;

 private:
  const std::string path_;
#ifdef _WIN32
  void* handle_;
#else
  int descriptor_;
#endif
};

}  // namespace KPF_TOOL

#endif

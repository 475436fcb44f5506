// A file mapped into memory for reading: the one place where the reader meets the operating system.
#ifndef MAPPED_FILE_H
#define MAPPED_FILE_H

#include <cstddef>
#include <span>
#include <string>

#include "reader/kpf_reader.h"

namespace KPF_READER {

class MappedFile {
 public:
  /// @throws RecordingError when `path` is not a file, or cannot be opened and mapped.
  MappedFile(const std::string& path, Access access);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  /// The whole file as it was when mapped.
  std::span<const unsigned char> bytes() const { return {data_, size_}; }

 private:
  const unsigned char* data_ = nullptr;  // null for an empty file, which cannot be mapped
  std::size_t size_ = 0;
};

}  // namespace KPF_READER

#endif

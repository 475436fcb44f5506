#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "reader/mapped_file.h"

namespace KPF_READER {
namespace {

[[noreturn]] void fail(const std::string& path) {
  throw RecordingError(path, 0, std::strerror(errno));
}

/// A descriptor that is closed on every way out; a mapping outlives it.
class Descriptor {
 public:
  // Non-blocking, so that a FIFO under a file's name does not wait for somebody to write.
  explicit Descriptor(const std::string& path)
      : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (fd_ < 0) fail(path);
  }
  ~Descriptor() { close(fd_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

std::size_t sizeOf(const Descriptor& file, const std::string& path) {
  struct stat status {};
  if (fstat(file.get(), &status) != 0) fail(path);
  if (!S_ISREG(status.st_mode)) throw RecordingError(path, 0, "not a file");
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size > std::numeric_limits<std::size_t>::max()) throw RecordingError(path, 0, "too large");
  return static_cast<std::size_t>(size);
}

/// Hints only: what they return changes nothing.
void adviseOn(void* mapping, std::size_t size, Access access) {
  if (access == Access::kSparse) {
    madvise(mapping, size, MADV_RANDOM);
    return;
  }
  madvise(mapping, size, MADV_SEQUENTIAL);
#ifdef MADV_HUGEPAGE
  // Read and mapped by 2 MiB where the file system can: one page fault instead of dozens.
  madvise(mapping, size, MADV_HUGEPAGE);
#endif
}

}  // namespace

MappedFile::MappedFile(const std::string& path, Access access) {
  const Descriptor file(path);
  size_ = sizeOf(file, path);
  if (size_ == 0) return;
  void* const mapping = mmap(nullptr, size_, PROT_READ, MAP_SHARED, file.get(), 0);
  if (mapping == MAP_FAILED) fail(path);
  adviseOn(mapping, size_, access);
  data_ = static_cast<const unsigned char*>(mapping);
}

MappedFile::~MappedFile() {
  if (data_ != nullptr) munmap(const_cast<unsigned char*>(data_), size_);
}

}  // namespace KPF_READER

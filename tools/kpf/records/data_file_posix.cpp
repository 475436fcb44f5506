#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <system_error>

#include "kpf_reader.h"
#include "tools/kpf/records/data_file.h"

namespace KPF_TOOL {
namespace {

[[noreturn]] void fail(const std::string& path, std::uint64_t offset) {
  throw KPF_READER::RecordingError(path, offset, std::generic_category().message(errno));
}

}  // namespace

DataFile::DataFile(const std::string& path)
    : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (descriptor_ < 0) fail(path_, 0);
}

DataFile::~DataFile() { close(descriptor_); }

std::size_t DataFile::read(std::uint64_t offset, std::span<unsigned char> into) const {
  std::size_t done = 0;
  while (done < into.size()) {
    const ssize_t got = pread(descriptor_, into.data() + done, into.size() - done,
                              static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0 && done == 0) fail(path_, offset);
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

std::uint64_t DataFile::storedFrom(std::uint64_t offset) const {
#ifdef SEEK_DATA
  const off_t stored = lseek(descriptor_, static_cast<off_t>(offset), SEEK_DATA);
  if (stored >= 0) return static_cast<std::uint64_t>(stored);
  struct stat status {};
  // Behind the last stored byte there is none, up to the end of the file.
  if (errno == ENXIO && fstat(descriptor_, &status) == 0 &&
      static_cast<std::uint64_t>(status.st_size) > offset) {
    return static_cast<std::uint64_t>(status.st_size);
  }
#endif
  return offset;
}

// Asks for the byte without waiting for a device. A file system that does not know the question
// counts as one that has it.
bool DataFile::isCached(std::uint64_t offset) const {
#ifdef RWF_NOWAIT
  unsigned char byte = 0;
  const iovec into{&byte, 1};
  return preadv2(descriptor_, &into, 1, static_cast<off_t>(offset), RWF_NOWAIT) >= 0 ||
         errno != EAGAIN;
#else
  return true;
#endif
}

void DataFile::forget(std::uint64_t begin, std::uint64_t end) const {
  posix_fadvise(descriptor_, static_cast<off_t>(begin), static_cast<off_t>(end - begin),
                POSIX_FADV_DONTNEED);
}

}  // namespace KPF_TOOL

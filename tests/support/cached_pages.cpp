#include "tests/support/cached_pages.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

#include "tests/support/files.h"

namespace TEST_SUPPORT {
namespace fs = std::filesystem;
namespace {

class OpenFile {
 public:
  explicit OpenFile(const fs::path& file) : descriptor_(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) throw std::runtime_error("cannot open " + file.string());
  }
  ~OpenFile() { close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

}  // namespace

std::uintmax_t cachedBytes(const fs::path& file) {
  const OpenFile opened(file);
  const auto size = static_cast<std::size_t>(fs::file_size(file));
  if (size == 0) return 0;
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const mapping = mmap(nullptr, size, PROT_READ, MAP_SHARED, opened.descriptor(), 0);
  if (mapping == MAP_FAILED) throw std::runtime_error("cannot map " + file.string());
  std::vector<unsigned char> pages((size + page - 1) / page);
  const int failed = mincore(mapping, size, pages.data());
  munmap(mapping, size);
  if (failed != 0) throw std::runtime_error("mincore");
  return page * static_cast<std::uintmax_t>(std::count_if(
                    pages.begin(), pages.end(), [](unsigned char p) { return (p & 1) != 0; }));
}

std::uintmax_t cachedBytesBelow(const fs::path& folder) {
  std::uintmax_t bytes = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) bytes += cachedBytes(entry.path());
  }
  return bytes;
}

bool givesPagesBack(const fs::path& folder) {
  const fs::path file = folder / "probe";
  writeBytes(file, Bytes(1U << 20, 1));
  {
    const OpenFile opened(file);
    fsync(opened.descriptor());
    posix_fadvise(opened.descriptor(), 0, 0, POSIX_FADV_DONTNEED);
  }
  const bool gone = cachedBytes(file) == 0;
  fs::remove(file);
  return gone;
}

}  // namespace TEST_SUPPORT

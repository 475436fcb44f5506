#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "stream/page_cache.h"

namespace VLM_KPF {
namespace {

alignas(4096) std::array<unsigned char, std::size_t{64} << 10> zeros;

/// In one call: a file system chooses the size of its pieces by what it is given at once.
void writeZeros(int file, std::uint64_t bytes) noexcept {
  std::array<iovec, 1024> blocks;  // as many as one call takes
  std::size_t count = 0;
  for (; bytes > 0 && count < blocks.size(); ++count) {
    const std::size_t size = std::min<std::uint64_t>(bytes, zeros.size());
    blocks[count] = {zeros.data(), size};
    bytes -= size;
  }
  [[maybe_unused]] const ssize_t ignored = writev(file, blocks.data(), static_cast<int>(count));
}

class LinuxPageCache final : public PageCache {
 public:
  void startWriting(int file, ByteRange bytes) noexcept override {
    sync_file_range(file, from(bytes), length(bytes), SYNC_FILE_RANGE_WRITE);
  }

  // Pages that are not yet clean would stay, so the wait comes first.
  void dropWritten(int file, ByteRange bytes) noexcept override {
    sync_file_range(
        file, from(bytes), length(bytes),
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
    posix_fadvise(file, from(bytes), length(bytes), POSIX_FADV_DONTNEED);
  }

  int keepOpen(int file) noexcept override { return fcntl(file, F_DUPFD_CLOEXEC, 0); }

  int takePages(const std::filesystem::path& folder, std::uint64_t record,
                unsigned count) noexcept override {
    const int pages = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    for (; pages >= 0 && count > 0; --count) writeZeros(pages, record);
    return pages;
  }

  void keepPages(int pages, std::uint64_t bytes) noexcept override {
    [[maybe_unused]] const int ignored = ftruncate64(pages, static_cast<off64_t>(bytes));
  }

  void release(int file) noexcept override { close(file); }

 private:
  static off64_t from(ByteRange bytes) { return static_cast<off64_t>(bytes.begin); }
  static off64_t length(ByteRange bytes) { return static_cast<off64_t>(bytes.size()); }
};

constinit LinuxPageCache instance;

}  // namespace

PageCache& PageCache::system() { return instance; }

}  // namespace VLM_KPF

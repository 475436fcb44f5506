#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>

#include "stream/page_cache.h"

namespace VLM_KPF {
namespace {

const std::array<unsigned char, PageCache::kPiece> zeros{};

/// A write beyond what files may hold would end a process that does not listen to SIGXFSZ.
bool filesMayHold(std::uint64_t bytes) noexcept {
  rlimit limit{};
  return getrlimit(RLIMIT_FSIZE, &limit) == 0 && bytes <= limit.rlim_cur;
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

  int takePages(const std::filesystem::path& folder, std::uint64_t bytes) noexcept override {
    if (!filesMayHold(bytes)) return -1;
    const int pages = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (pages < 0) return -1;
    for (std::uint64_t left = bytes; left > 0;) {
      const ssize_t written = write(pages, zeros.data(), std::min<std::uint64_t>(left, kPiece));
      if (written <= 0) break;
      left -= static_cast<std::uint64_t>(written);
    }
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

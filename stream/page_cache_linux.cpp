#include <fcntl.h>
#include <sys/resource.h>
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

constexpr std::size_t kBlocks = 1024;                                  // as many as one call takes
alignas(4096) std::array<unsigned char, std::size_t{64} << 10> zeros;  // no iovec takes constants

/// A write beyond what files may hold would end a process that does not listen to SIGXFSZ.
bool filesMayHold(std::uint64_t bytes) noexcept {
  rlimit limit{};
  return getrlimit(RLIMIT_FSIZE, &limit) == 0 && bytes <= limit.rlim_cur;
}

/// In one call: a file system chooses the size of its pieces by what it is given at once.
/// @return whether all of them found room.
bool writeZeros(int file, std::uint64_t bytes) noexcept {
  const std::size_t all = std::min<std::uint64_t>(bytes, kBlocks * zeros.size());
  std::array<iovec, kBlocks> blocks;
  std::size_t count = 0;
  for (std::size_t done = 0; done < all; done += zeros.size()) {
    blocks[count++] = {zeros.data(), std::min(all - done, zeros.size())};
  }
  return writev(file, blocks.data(), static_cast<int>(count)) == static_cast<ssize_t>(all);
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
    if (!filesMayHold(record * count)) return -1;
    const int pages = open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    while (pages >= 0 && count > 0 && writeZeros(pages, record)) --count;
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

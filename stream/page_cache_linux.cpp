#include <fcntl.h>
#include <unistd.h>

#include "stream/page_cache.h"

namespace VLM_KPF {
namespace {

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

  void release(int file) noexcept override { close(file); }

 private:
  static off64_t from(ByteRange bytes) { return static_cast<off64_t>(bytes.begin); }
  static off64_t length(ByteRange bytes) { return static_cast<off64_t>(bytes.size()); }
};

constinit LinuxPageCache instance;

}  // namespace

PageCache& PageCache::system() { return instance; }

}  // namespace VLM_KPF

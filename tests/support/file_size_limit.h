// A disk that is full from some byte on. Not on Windows.
#ifndef FILE_SIZE_LIMIT_H
#define FILE_SIZE_LIMIT_H

#include <sys/resource.h>

#include <csignal>

namespace TEST_SUPPORT {

/// No file grows past `bytes` while it lives; the signal that would tell is ignored.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : signalBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limited{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signalBefore_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*signalBefore_)(int);
};

}  // namespace TEST_SUPPORT

#endif

#include "vx_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "log/vx_log_sink.h"
#include "paths/native_path.h"

namespace VX_LOG {
namespace {

constexpr std::size_t kLineCapacity = 1024;  // bytes, the line feed included

// The file is nothing to a program that the application starts.
#ifdef _WIN32
// Binary: a line ends in a single line feed on every platform.
constexpr int kOpenFlags = O_WRONLY | O_CREAT | O_BINARY | O_NOINHERIT;
constexpr int kPermissions = S_IREAD | S_IWRITE;
#else
constexpr int kOpenFlags = O_WRONLY | O_CREAT | O_CLOEXEC;
constexpr int kPermissions = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP;
#endif

/// The logger and its mutex are never destroyed: a thread that nobody ended may log to the last.
union Kept {
  Kept() : statics() {}
  ~Kept() {}
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  struct {
    std::mutex mutex;
    std::unique_ptr<VxLogger> instance;
  } statics;
};

/// Closes the log file at the end; lines that come even later go to standard output alone.
struct LastCloser {
  ~LastCloser() {
    if (VxLogger::instance != nullptr) VxLogger::instance->loggerFile(nullptr);
  }
};

// The lowest priorities that are not the compiler's own: made before every static object that may
// log, in whatever order the program was linked, and so closed after the end of all of them.
[[gnu::init_priority(101)]] Kept kept;
[[gnu::init_priority(102)]] LastCloser lastCloser;

}  // namespace

constinit std::mutex& VxLogger::instance_mutex = kept.statics.mutex;
constinit std::unique_ptr<VxLogger>& VxLogger::instance = kept.statics.instance;

constinit std::atomic<LineSink> lineSink{nullptr};

VxLogger* VxLogger::factory() {
  const std::lock_guard lock(instance_mutex);
  if (instance == nullptr) instance.reset(new VxLogger);
  return instance.get();
}

VxLogger::~VxLogger() { closeFile(); }

void VxLogger::loggerUseSyslog(bool use) { useSyslog_ = use; }

void VxLogger::loggerUseStdout(bool use) { useStdout_ = use; }

int VxLogger::loggerFile(const char* path) {
  if (path == nullptr) {
    fileName_.clear();
    closeFile();
    return 0;
  }
  if (!fileName_.empty()) return -1;
  std::string name(path);
  const int descriptor = openFile(path);
  if (descriptor < 0) return errno;
  fileName_ = std::move(name);
  fileDescriptor_ = descriptor;
  return 0;
}

int VxLogger::loggerReopen() {
  closeFile();
  fileDescriptor_ = openFile(fileName_.c_str());
  return fileDescriptor_;
}

// Nothing is allocated on the way: a process that has run out of memory can still say so.
void VxLogger::vx_log(unsigned level, const char* format, ...) {
  char line[kLineCapacity];
  va_list arguments;
  va_start(arguments, format);
  const int wanted = std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);

  const std::size_t length =
      std::min(static_cast<std::size_t>(std::max(wanted, 0)), kLineCapacity - 1);
  if (const LineSink sink = lineSink.load(); sink != nullptr) {
    line[length] = '\0';
    return sink(level, line);
  }
  line[length] = '\n';  // in place of the terminating zero
  write(line, length + 1);
}

void VxLogger::write(const char* line, std::size_t size) const {
  if (useStdout_) {
    std::fwrite(line, 1, size, stdout);
    std::fflush(stdout);
  }
  // Descriptor 0 is never written, even where a process that had closed it got it for its log.
  if (fileDescriptor_ > 0) {
    [[maybe_unused]] const auto written =
        ::write(fileDescriptor_, line, static_cast<unsigned>(size));
  }
}

// Positioned at the first byte, neither appending nor truncating: old lines behind the new stay.
int VxLogger::openFile(const char* path) {
  const std::filesystem::path file = PATHS::nativePath(path);
#ifdef _WIN32
  return ::_wopen(file.c_str(), kOpenFlags, kPermissions);
#else
  return ::open(file.c_str(), kOpenFlags, kPermissions);
#endif
}

void VxLogger::closeFile() {
  if (fileDescriptor_ >= 0) ::close(fileDescriptor_);
  fileDescriptor_ = -1;
}

}  // namespace VX_LOG

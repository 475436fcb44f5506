// The process-wide logger through which every part of the library reports trouble.
#ifndef VX_LOG_H
#define VX_LOG_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "vlm_export.h"

#if defined(__MINGW32__)
#define VX_LOG_PRINTF __attribute__((format(gnu_printf, 3, 4)))
#else
#define VX_LOG_PRINTF __attribute__((format(printf, 3, 4)))
#endif

namespace VX_LOG {

/// The levels that the library's lines have: severities as the system log numbers them.
enum Level : unsigned { kError = 3, kWarning = 4, kDebug = 7 };

/**
 * Writes lines to standard output and, once set, to a file.
 *
 * It keeps no history, adds no time stamp and filters nothing: the level of a line is the caller's
 * note to the reader of the code. Only the creation of the one instance is guarded; callers who
 * set or reopen the file while other threads log serialise that themselves.
 */
class VxLogger {
 public:
  /// The one logger of the process, created on first use and owned by the library.
  /// Throws std::system_error when the mutex that guards its creation cannot be locked.
  VLM_API static VxLogger* factory();

  /// Stores the flag. Nothing reads it: no line goes to the system log.
  VLM_API void loggerUseSyslog(bool use);

  /// Whether every line is also written to standard output (at first: yes). Every new stream
  /// switches it on again.
  VLM_API void loggerUseStdout(bool use);

  /**
   * Opens `path` for the lines to come, or closes the log file when `path` is null. Programs that
   * the application starts do not inherit the file.
   *
   * A new file is readable and writable for owner and group. An existing one is overwritten from
   * its first byte on and keeps whatever lies behind the new lines.
   *
   * @return 0; -1 when a file is already set (nothing changes); the errno of a failed open.
   */
  VLM_API int loggerFile(const char* path);

  /// Closes the log file and opens the same name again, for log rotation.
  /// @return the new descriptor, or -1; the name is kept either way.
  VLM_API int loggerReopen();

  /**
   * Writes one line: `format` and its arguments by the rules of printf, cut at 1023 bytes, and a
   * line feed. Failures of either output are ignored.
   *
   * @param level a Level, or any other severity of the system log; every level is written.
   */
  VLM_API VX_LOG_PRINTF void vx_log(unsigned level, const char* format, ...);

  ~VxLogger();
  VxLogger(const VxLogger&) = delete;
  VxLogger& operator=(const VxLogger&) = delete;

  static std::unique_ptr<VxLogger>& instance;  // null until the first factory()
  static std::mutex& instance_mutex;           // guards the creation of `instance`

 private:
  VxLogger() = default;
  int openFile(const char* path);
  void closeFile();
  void write(const char* line, std::size_t size) const;

  bool reserved_ = false;  // part of the record, read by nothing
  std::atomic<bool> useSyslog_ = true;
  std::atomic<bool> useStdout_ = true;
  std::string fileName_;     // empty: no file set
  int fileDescriptor_ = -1;  // -1: no file open
};

}  // namespace VX_LOG

#endif

// Keeps the logger alive for everything that may still log when the process ends.
#ifndef VX_LOG_LIFETIME_H
#define VX_LOG_LIFETIME_H

namespace VX_LOG {

/**
 * Counts the source files that may log while static objects are destroyed.
 *
 * A file that includes this header owns one counted object, made before the statics that the file
 * defines below its includes and so destroyed after them. The last one to go destroys the logger.
 * The order in which the objects were linked plays no part.
 */
class VxLoggerLifetime {
 public:
  VxLoggerLifetime();
  ~VxLoggerLifetime();
  VxLoggerLifetime(const VxLoggerLifetime&) = delete;
  VxLoggerLifetime& operator=(const VxLoggerLifetime&) = delete;
};

static const VxLoggerLifetime loggerLifetime;

}  // namespace VX_LOG

#endif

// Another way for the logger's lines, for a library that holds this one inside.
#ifndef VX_LOG_SINK_H
#define VX_LOG_SINK_H

#include <atomic>

namespace VX_LOG {

/// Receives one line without its line feed, ended by a zero byte. Any thread may call it, and
/// several may at once. It does not throw.
using LineSink = void (*)(unsigned level, const char* line) noexcept;

/// While one is set, every line goes to it alone, whatever the flags and the log file say: callers
/// who never asked for standard output find nothing there.
extern constinit std::atomic<LineSink> lineSink;

}  // namespace VX_LOG

#endif

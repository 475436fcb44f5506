// Points in time as users write them.
#ifndef KPF_START_TIME_H
#define KPF_START_TIME_H

#include <cstdint>
#include <string>

namespace KPF_TOOL {

/// When the first frame was taken.
struct StartTime {
  std::uint64_t seconds = 0;  // since 1970, UTC
  std::uint32_t microseconds = 0;
};

/// "1700000000.25", "2026-11-21T05:00:00.25", with or without a Z; always UTC. Empty: now.
/// @throws ToolError for anything else.
StartTime parseStartTime(const std::string& text);

}  // namespace KPF_TOOL

#endif

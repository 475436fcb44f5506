// kpf record of what comes in its own time: cameras, and whatever waits for an event.
#ifndef KPF_RECORD_LIVE_H
#define KPF_RECORD_LIVE_H

#include "tools/kpf/commands/record_options.h"
#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

/// Whether frames are recorded as they come, and not as fast as they can be had.
bool isLive(const RecordOptions& options);

/// @throws ToolError where options do not go together, or cannot be read.
void checkLiveOptions(const RecordOptions& options);

Outcome recordLive(const RecordOptions& options);

}  // namespace KPF_TOOL

#endif

// What is told of a live recording when it has ended.
#ifndef KPF_LIVE_REPORT_H
#define KPF_LIVE_REPORT_H

#include <string>
#include <vector>

#include "tools/kpf/commands/record_options.h"
#include "tools/kpf/recording/clip_files.h"
#include "tools/kpf/recording/live_recorder.h"
#include "tools/kpf/recording/record_report.h"
#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

struct LiveResult {
  std::vector<Clip> clips;
  LiveTally tally;
  std::string trouble;       // why it ended before anybody wanted it to
  double drift = 0;          // seconds that the camera's clock lost
  unsigned clockResets = 0;  // how often it was set back
  bool clockMissing = false;
  unsigned mostWaiting = 0;
  unsigned buffers = 0;
  double worstCall = 0;  // seconds
};

/// Prints it. @param remarks what was worth knowing so far; what is of the clock joins it.
Outcome report(const LiveResult& result, const RecordOptions& options, RecordReport& remarks);

}  // namespace KPF_TOOL

#endif

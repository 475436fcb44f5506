// Which options of kpf record belong to cameras and events.
#ifndef KPF_LIVE_OPTIONS_H
#define KPF_LIVE_OPTIONS_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// How a camera is set, and what is done with frames that come in their own time.
struct LiveOptions {
  double exposure = 0;                // microseconds; 0: the camera's
  std::vector<std::string> features;  // "Name=Value"
  std::string region;                 // "640x480+0+0"; empty: the camera's
  unsigned buffers = 0;               // frames; 0: those of half a second
  std::string clock;                  // "camera", "system", "rate"; empty: the camera's
  bool noLoss = false;                // a frame that is lost is an error
  std::int64_t before = -1;           // records kept from before the event; -1: no waiting for one
  std::string trigger;                // "motion:LEVEL"; empty: Enter and SIGUSR1 alone
  std::string after;                  // "100" frames or "2.5s" from the event on; empty: no end
  bool again = false;

  /// Whether something is waited for.
  bool waits() const { return before >= 0 || !trigger.empty(); }
};

void addLiveOptions(CLI::App& line, LiveOptions& options);

}  // namespace KPF_TOOL

#endif

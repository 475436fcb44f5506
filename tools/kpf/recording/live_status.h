// The line that tells how a recording of a camera goes.
#ifndef KPF_LIVE_STATUS_H
#define KPF_LIVE_STATUS_H

#include <cstdint>
#include <optional>
#include <string>

namespace KPF_TOOL {

struct LiveStatus {
  bool armed = false;  // waits for an event
  std::uint64_t held = 0;
  std::uint64_t before = 0;      // records that are to be held
  std::optional<double> motion;  // level of the newest frame, where somebody looks
  std::uint64_t frames = 0;      // of this recording
  double seconds = 0;            // since the camera runs
  std::uint64_t received = 0;
  double rateWanted = 0;
  std::uint64_t lost = 0;  // incomplete frames included
  unsigned waiting = 0;    // buffers that have come and were not taken
  unsigned mostWaiting = 0;
  unsigned buffers = 0;
  double diskMinutes = 0;  // that the disk lasts at this rate
  double worstCall = 0;    // seconds
};

/// "412 frames, 99.8 of 100 frames/s, 3 lost, 1 of 50 buffers waiting (most 7), disk for 132 min,
/// slowest write 1.2 ms"
std::string liveText(const LiveStatus& status);

}  // namespace KPF_TOOL

#endif

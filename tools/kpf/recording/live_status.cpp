#include "tools/kpf/recording/live_status.h"

#include <fmt/format.h>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

std::string beginningOf(const LiveStatus& status) {
  if (!status.armed) return countText(status.frames, "frame");
  std::string text =
      fmt::format("armed, {} of {} held", status.held, countText(status.before, "record"));
  if (status.motion) text += fmt::format(", motion {:.2f}", *status.motion);
  return text;
}

}  // namespace

std::string liveText(const LiveStatus& status) {
  std::string text = beginningOf(status);
  if (status.seconds > 0) {
    text += fmt::format(", {:.1f} of {:g} frames/s",
                        static_cast<double>(status.received) / status.seconds, status.rateWanted);
  }
  text += fmt::format(", {} lost", status.lost);
  if (status.buffers > 0) {
    text += fmt::format(", {} of {} buffers waiting (most {})", status.waiting, status.buffers,
                        status.mostWaiting);
  }
  return text + fmt::format(", disk for {:.0f} min, slowest write {:.1f} ms", status.diskMinutes,
                            status.worstCall * 1e3);
}

}  // namespace KPF_TOOL

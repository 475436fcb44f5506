// The tool where FFmpeg is not to be had: what needs it says so.
#include <fmt/format.h>

#include <memory>
#include <string>

#include "tools/kpf/media/media.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

bool tellsNoRate(const std::string&, const MediaHints&) { return false; }

std::unique_ptr<FrameSource> openMedia(const std::string& name, Samples, const MediaHints&) {
  throw ToolError(Outcome::kWrongUsage,
                  fmt::format("cannot open {}: this kpf is built without FFmpeg", escaped(name)),
                  "Give a recording (.kpf), or use a kpf with FFmpeg for videos and images.");
}

std::unique_ptr<PictureOutput> openEncodedOutput(const Destination& destination,
                                                 const PictureFormat&) {
  throw ToolError(
      Outcome::kWrongUsage,
      fmt::format("cannot make {}: this kpf is built without FFmpeg", escaped(destination.name)),
      "Write .y4m, .pgm, .raw, or - for raw frames, or use a kpf with FFmpeg.");
}

}  // namespace KPF_TOOL

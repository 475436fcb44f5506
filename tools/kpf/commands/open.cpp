#include "tools/kpf/commands/open.h"

#include "tools/kpf/frames/raw_output.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/media/media.h"

namespace KPF_TOOL {

std::unique_ptr<FrameSource> openFrames(const std::string& name, Samples samples) {
  return name.ends_with(".kpf") ? openRecording(name, samples) : openMedia(name, samples);
}

std::unique_ptr<PictureOutput> openOutput(const std::string& name, const PictureFormat& format) {
  return name == "-" ? openRawOutput(format) : openEncodedOutput(name, format);
}

}  // namespace KPF_TOOL

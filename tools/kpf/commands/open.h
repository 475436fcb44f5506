// What a name on the command line stands for.
#ifndef KPF_OPEN_H
#define KPF_OPEN_H

#include <memory>
#include <string>

#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// A recording, when the name ends in .kpf, else whatever FFmpeg opens. Of 12-bit recordings the
/// 8-bit samples are the high bytes. @throws ToolError, KPF_READER::RecordingError.
std::unique_ptr<FrameSource> openFrames(const std::string& name, Samples samples);

/// `-`: raw frames on standard output; anything else by its extension, see openEncodedOutput.
/// @throws ToolError.
std::unique_ptr<PictureOutput> openOutput(const std::string& name, const PictureFormat& format);

}  // namespace KPF_TOOL

#endif

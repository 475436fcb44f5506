// Frames one behind the other in a file.
#ifndef KPF_FRAME_FILE_H
#define KPF_FRAME_FILE_H

#include <memory>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/framing.h"
#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// @throws ToolError as openPlainOutput does.
std::unique_ptr<PictureOutput> openFrameFile(const Destination& destination,
                                             const PictureFormat& format, const Framing& framing);

}  // namespace KPF_TOOL

#endif

// Frames one behind the other, for the program behind a pipe.
#ifndef KPF_RAW_OUTPUT_H
#define KPF_RAW_OUTPUT_H

#include <memory>

#include "tools/kpf/frames/framing.h"
#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// Writes the frames to what is standard output now, also when that is captured later.
std::unique_ptr<PictureOutput> openRawOutput(const PictureFormat& format, const Framing& framing);

}  // namespace KPF_TOOL

#endif

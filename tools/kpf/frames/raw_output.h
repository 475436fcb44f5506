// Frames as they are, for the program behind a pipe.
#ifndef KPF_RAW_OUTPUT_H
#define KPF_RAW_OUTPUT_H

#include <memory>

#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// Writes the frames, bare or as Y4M, to what is standard output now, also when that is captured
/// later.
std::unique_ptr<PictureOutput> openRawOutput(const PictureFormat& format);

}  // namespace KPF_TOOL

#endif

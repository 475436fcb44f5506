// Frames as grey images that every program reads.
#ifndef KPF_PGM_OUTPUT_H
#define KPF_PGM_OUTPUT_H

#include <memory>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// @throws ToolError as openPlainOutput does.
std::unique_ptr<PictureOutput> openPgmOutput(const Destination& destination,
                                             const PictureFormat& format);

}  // namespace KPF_TOOL

#endif

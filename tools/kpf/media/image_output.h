// Frames as images. For the sources of this folder alone.
#ifndef KPF_IMAGE_OUTPUT_H
#define KPF_IMAGE_OUTPUT_H

#include <memory>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/media/encoder.h"

namespace KPF_TOOL {

/// @throws ToolError as openEncodedOutput does.
std::unique_ptr<PictureOutput> openImageOutput(const Destination& destination,
                                               const PictureFormat& format,
                                               const Encoding& encoding);

}  // namespace KPF_TOOL

#endif

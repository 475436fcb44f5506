// Pictures that need no codec, and so no FFmpeg.
#ifndef KPF_PLAIN_OUTPUT_H
#define KPF_PLAIN_OUTPUT_H

#include <memory>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/**
 * Opens a file by the extension of its name: `.raw` for bare frames, `.y4m` for a video, `.pgm` for
 * an image or, with a pattern like `frame_%06d.pgm`, many. All of them keep every bit.
 *
 * @return nothing for any other extension.
 * @throws ToolError when something is in the way that may not be replaced.
 */
std::unique_ptr<PictureOutput> openPlainOutput(const Destination& destination,
                                               const PictureFormat& format);

}  // namespace KPF_TOOL

#endif

// What a player does to a video before it shows it.
#ifndef KPF_STREAM_REMARKS_H
#define KPF_STREAM_REMARKS_H

#include <string>
#include <vector>

#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {

/// Frames are taken as they are stored. Where a player would turn, mirror or stretch them, or could
/// show another video of the same file, that is said. @param chosen the number of the stream.
std::vector<std::string> streamRemarks(const AVFormatContext& file, int chosen,
                                       const std::string& name);

}  // namespace KPF_TOOL

#endif

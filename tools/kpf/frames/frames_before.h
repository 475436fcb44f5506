// What lies before the first frame that is asked for.
#ifndef KPF_FRAMES_BEFORE_H
#define KPF_FRAMES_BEFORE_H

#include <cstdint>
#include <vector>

#include "tools/kpf/frames/frame_source.h"

namespace KPF_TOOL {

/// The last frame before `first` that was not lost, in rows without gaps; black where there is
/// none.
/// @param source one of its own, at its begin, that can go back.
std::vector<unsigned char> frameBefore(FrameSource& source, std::uint64_t first);

/// The number from which on `wanted` frames before `first` were not lost, or 0 where there are not
/// so many. @param source as above.
std::uint64_t startOfFramesBefore(FrameSource& source, std::uint64_t first, std::uint64_t wanted);

}  // namespace KPF_TOOL

#endif

// How containers say where they end.
#ifndef KPF_CONTAINER_END_H
#define KPF_CONTAINER_END_H

#include <cstdint>
#include <string>

#include "tools/kpf/media/watched_input.h"

namespace KPF_TOOL {

/// What the container of an input that was read to its end says should follow there, in words;
/// empty where nothing is missing, and where its kind does not tell. FFmpeg takes such ends for
/// whole files. @param file its index, too, may name more than is there.
/// @param video the number of the stream. @param packetsEnd where its last packet ends.
std::string missingEnd(const AVFormatContext& file, int video, const WatchedInput& input,
                       std::uint64_t packetsEnd);

/// How many bytes its header counts at least; 0 where it does not, or nobody knew.
std::uint64_t statedSize(const AVFormatContext& file, const WatchedInput& input);

}  // namespace KPF_TOOL

#endif

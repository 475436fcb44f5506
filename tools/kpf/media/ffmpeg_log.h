// What FFmpeg says in its log, which nobody sees: it is told in the tool's own words.
#ifndef KPF_FFMPEG_LOG_H
#define KPF_FFMPEG_LOG_H

#include <cstdint>
#include <string>

namespace KPF_TOOL {

/// Lines of one kind since the program began. They tell no file apart: whoever wants to know
/// compares two counts.
struct LogCounts {
  std::uint64_t errors = 0;
  std::uint64_t ofContainers = 0;  // those of them that are about no frame
  std::uint64_t earlyEnds = 0;  // files that end within what they began; some formats say no more
};

/// From here on FFmpeg's lines are counted, and go nowhere.
void listenToFFmpeg();

LogCounts logCounts();

/// The latest error of a container, in FFmpeg's words.
std::string latestOfContainers();

}  // namespace KPF_TOOL

#endif

// How the tool writes what stands in a recording.
#ifndef RECORDING_TEXT_H
#define RECORDING_TEXT_H

#include <cstdint>
#include <string>

#include "kpf_reader.h"

namespace KPF_TOOL {

/// In quotes, with control characters, quotes and backslashes escaped: texts come from files that
/// nobody vouches for, and end up on a terminal.
std::string quoted(const std::string& text);

/// The same without quotes, for names.
std::string escaped(const std::string& text);

/// Seconds with six digits; beside them the date, when they count from 1970 to 9999.
std::string timeText(const KPF_READER::FrameRecord& record);

/// "351.9 MB": decimal units, one digit.
std::string sizeText(double bytes);

/// "1 file", "2 files".
std::string countText(std::uint64_t count, const std::string& thing);

/// Prints the error and, below it, what to do about it. @return 2, the exit code of such an end.
int unreadable(const KPF_READER::RecordingError& error);

}  // namespace KPF_TOOL

#endif

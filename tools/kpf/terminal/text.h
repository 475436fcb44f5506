// How the tool writes names, numbers and times.
#ifndef KPF_TEXT_H
#define KPF_TEXT_H

#include <cstdint>
#include <string>

namespace KPF_TOOL {

/// In quotes, with quotes, backslashes and the bytes of all that is no printable text escaped: what
/// moves the cursor or turns the order of reading included. Texts come from files that nobody
/// vouches for, and end up on a terminal.
std::string quoted(const std::string& text);

/// The same without quotes, for names.
std::string escaped(const std::string& text);

/// Seconds with six digits; beside them the date, when they count from 1970 to 9999. Earlier and
/// later ones are of an epoch that only their recorder knows.
std::string timeText(std::int64_t seconds, std::uint32_t microseconds);

/// "0.040000 s"; what no clock of ours lasts is written shorter.
std::string secondsText(double seconds);

/// "351.9 MB": decimal units, one digit.
std::string sizeText(double bytes);

/// Of the letters that extensions are made of, whatever the locale says.
std::string lowerCase(std::string text);

/// "1 file", "2 files".
std::string countText(std::uint64_t count, const std::string& thing);

/// "1 file is", "2 files are".
std::string areText(std::uint64_t count, const std::string& thing);

}  // namespace KPF_TOOL

#endif

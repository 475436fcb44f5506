#include "tools/kpf/recording/event.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <regex>

#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

double parseMotionLevel(const std::string& text) {
  static const std::regex form(R"(motion:(\d{1,3}(?:\.\d{1,9})?))");
  std::smatch match;
  if (std::regex_match(text, match, form)) {
    const double level = std::stod(match[1].str());
    if (level <= 255) return level;
  }
  throw ToolError(Outcome::kWrongUsage, fmt::format("{} is no trigger", quoted(text)),
                  "Write --trigger motion:LEVEL, with a level of grey from 0 to 255.");
}

ClipLimit lasting(double seconds, double rate) {
  ClipLimit limit;
  limit.frames = static_cast<std::uint64_t>(std::max(1.0, std::round(seconds * rate)));
  limit.nanoseconds = static_cast<std::uint64_t>(seconds * 1e9);
  return limit;
}

ClipLimit parseAfter(const std::string& text, double rate) {
  static const std::regex form(R"((\d{1,9})|(\d{1,6}(?:\.\d{1,9})?)s)");
  std::smatch match;
  if (std::regex_match(text, match, form)) {
    if (match[2].matched) return lasting(std::stod(match[2].str()), rate);
    ClipLimit limit;
    limit.frames = std::max<std::uint64_t>(std::stoull(match[1].str()), 1);
    return limit;
  }
  throw ToolError(Outcome::kWrongUsage, fmt::format("{} is no length", quoted(text)),
                  "Write --after 100 for frames, or 2.5s for seconds.");
}

// The signal is asked in any case, so that it is used up.
bool Event::fires(const unsigned char* pixels) {
  const bool given = signal_.given();
  return (motion_ && motion_->fires(pixels)) || given;
}

void Event::arm() {
  signal_.given();  // what came while a recording ran was not meant for the next one
  if (motion_) motion_->arm();
}

}  // namespace KPF_TOOL

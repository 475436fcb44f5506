#include "tools/kpf/terminal/text.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cstddef>
#include <ctime>
#include <iterator>

namespace KPF_TOOL {
namespace {

constexpr std::int64_t kYear10000 = 253402300800;  // seconds since 1970

std::string escapedCharacter(char character) {
  const auto code = static_cast<unsigned char>(character);
  if (code < 0x20 || code == 0x7F) return fmt::format("\\x{:02x}", code);
  return {character};
}

}  // namespace

std::string escaped(const std::string& text) {
  std::string out;
  for (const char character : text) out += escapedCharacter(character);
  return out;
}

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') out += '\\';
    out += escapedCharacter(character);
  }
  return out + '"';
}

std::string timeText(std::int64_t seconds, std::uint32_t microseconds) {
  std::string text = fmt::format("{}.{:06}", seconds, microseconds);
  if (seconds <= 0 || seconds >= kYear10000) return text;
  return fmt::format("{} ({:%F %T}.{:06} UTC)", text,
                     fmt::gmtime(static_cast<std::time_t>(seconds)), microseconds);
}

std::string sizeText(double bytes) {
  if (bytes < 1000) return fmt::format("{:.0f} bytes", bytes);
  const char* const units[] = {"kB", "MB", "GB", "TB"};
  std::size_t unit = 0;
  double value = bytes / 1000;
  // 999.95 would be printed as 1000.0: the next unit takes over before.
  for (; value >= 999.95 && unit + 1 < std::size(units); ++unit) value /= 1000;
  return fmt::format("{:.1f} {}", value, units[unit]);
}

std::string lowerCase(std::string text) {
  for (char& letter : text) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return text;
}

std::string countText(std::uint64_t count, const std::string& thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

}  // namespace KPF_TOOL

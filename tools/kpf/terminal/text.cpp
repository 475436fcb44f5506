#include "tools/kpf/terminal/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace KPF_TOOL {
namespace {

constexpr std::int64_t kYear10000 = 253402300800;  // seconds since 1970

struct CodePoints {
  char32_t first;
  char32_t last;
};

// What moves the cursor, turns the order of reading, hides, or is no character at all.
constexpr CodePoints kUnprintable[] = {
    {0x00, 0x1F},        {0x7F, 0x9F},        // control characters, of both kinds
    {0xAD, 0xAD},        {0x61C, 0x61C},      // soft hyphen; mark of Arabic writing
    {0x200B, 0x200F},    {0x2028, 0x202E},    // no width; line ends, writing to the left
    {0x2060, 0x206F},    {0xD800, 0xDFFF},    // the like, newer; halves of pairs
    {0xFEFF, 0xFEFF},    {0xFFF0, 0xFFFB},    // byte order; annotations
    {0xFFFE, 0xFFFF},    {0xE0000, 0xE0FFF},  // none; invisible tags
    {0x110000, 0x1FFFFF}};                    // beyond the last

bool printable(char32_t character) {
  return std::none_of(std::begin(kUnprintable), std::end(kUnprintable), [character](CodePoints c) {
    return character >= c.first && character <= c.last;
  });
}

/// A character of UTF-8 and how many bytes stand for it.
struct Character {
  char32_t code = 0;
  std::size_t bytes = 0;  // 0 where the text is no UTF-8
};

/// The character at the front of `text`, which is not empty.
Character firstOf(std::string_view text) {
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};  // what needs so many bytes
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t bytes = lead >> 3U == 0x1E  ? 4
                            : lead >> 4U == 0xE ? 3
                            : lead >> 5U == 6   ? 2
                                                : 0;
  if (bytes == 0 || bytes > text.size()) return {};
  char32_t code = lead & (0x7FU >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return {};
    code = code << 6U | (byte(i) & 0x3FU);
  }
  if (code < kSmallest[bytes]) return {};
  return {code, bytes};
}

/// Printable characters as they are, those of `marked` behind a backslash, other bytes as \xNN.
std::string escaped(std::string_view text, std::string_view marked) {
  std::string out;
  while (!text.empty()) {
    const Character character = firstOf(text);
    const bool shown = character.bytes != 0 && printable(character.code);
    const std::string_view bytes = text.substr(0, std::max<std::size_t>(character.bytes, 1));
    if (shown && marked.find(text[0]) != std::string_view::npos) out += '\\';
    for (const char byte : bytes) {
      if (shown) {
        out += byte;
      } else {
        out += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
      }
    }
    text.remove_prefix(bytes.size());
  }
  return out;
}

}  // namespace

std::string escaped(const std::string& text) { return escaped(text, ""); }

std::string quoted(const std::string& text) { return '"' + escaped(text, "\"\\") + '"'; }

std::string timeText(std::int64_t seconds, std::uint32_t microseconds) {
  std::string text = fmt::format("{}.{:06}", seconds, microseconds);
  if (seconds <= 0 || seconds >= kYear10000) return text;
  // Not by gmtime, which knows no year after 3000 on Windows.
  const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
  const auto midnight = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(midnight);
  const std::chrono::hh_mm_ss clock(time - midnight);
  return fmt::format("{} ({:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:06} UTC)", text,
                     static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                     static_cast<unsigned>(date.day()), clock.hours().count(),
                     clock.minutes().count(), clock.seconds().count(), microseconds);
}

std::string secondsText(double seconds) {
  return std::abs(seconds) < 1e15 ? fmt::format("{:.6f} s", seconds)
                                  : fmt::format("{:g} s", seconds);
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

std::string areText(std::uint64_t count, const std::string& thing) {
  return countText(count, thing) + (count == 1 ? " is" : " are");
}

}  // namespace KPF_TOOL

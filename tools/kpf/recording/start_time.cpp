#include "tools/kpf/recording/start_time.h"

#include <fmt/format.h>

#include <chrono>
#include <cstddef>
#include <regex>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

/// Of the digits behind the point, "25" for a quarter.
std::uint32_t microsecondsOf(std::string digits) {
  digits.resize(6, '0');
  return static_cast<std::uint32_t>(std::stoul(digits));
}

StartTime startingNow() {
  using namespace std::chrono;
  const auto since = floor<microseconds>(system_clock::now()).time_since_epoch().count();
  return {static_cast<std::uint64_t>(since / 1000000), static_cast<std::uint32_t>(since % 1000000)};
}

/// Seconds since 1970 of a date that the calendar knows, or -1.
std::int64_t secondsOf(const std::smatch& date) {
  using namespace std::chrono;
  const auto number = [&date](std::size_t i) { return std::stoi(date[i].str()); };
  const year_month_day day{year{number(1)}, month{static_cast<unsigned>(number(2))},
                           std::chrono::day{static_cast<unsigned>(number(3))}};
  if (!day.ok() || number(4) > 23 || number(5) > 59 || number(6) > 59) return -1;
  const auto time = sys_days{day} + hours{number(4)} + minutes{number(5)} + seconds{number(6)};
  return duration_cast<seconds>(time.time_since_epoch()).count();
}

}  // namespace

StartTime parseStartTime(const std::string& text) {
  if (text.empty()) return startingNow();
  // Up to 18 digits fit 64 bits; digits behind the microsecond are read and dropped.
  static const std::regex epoch(R"((\d{1,18})(?:\.(\d{1,6})\d*)?)");
  static const std::regex date(
      R"((\d{4})-(\d\d)-(\d\d)[T ](\d\d):(\d\d):(\d\d)(?:\.(\d{1,6})\d*)?Z?)");
  std::smatch match;
  if (std::regex_match(text, match, epoch)) {
    return {std::stoull(match[1].str()), microsecondsOf(match[2].str())};
  }
  if (std::regex_match(text, match, date)) {
    const std::int64_t seconds = secondsOf(match);
    if (seconds >= 0) {
      return {static_cast<std::uint64_t>(seconds), microsecondsOf(match[7].str())};
    }
  }
  throw ToolError(Outcome::kWrongUsage, fmt::format("{} is not a time", text),
                  "Write 2026-11-21T05:00:00Z, or seconds since 1970 like 1700000000.25.");
}

}  // namespace KPF_TOOL

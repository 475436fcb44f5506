#include "tools/kpf/commands/command.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <system_error>

namespace KPF_TOOL {
namespace {

// Parsed as an unsigned number, -1 would be the largest one, and so would be what no number holds.
CLI::Validator frameNumber() {
  const auto check = [](const std::string& text) -> std::string {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end ? "" : fmt::format("{} is no frame's number", text);
  };
  return {check, "NUMBER"};
}

}  // namespace

const char* const kCutShortText = "cut short: interrupted, or the system refused to write";
const char* const kNotBegunText = "wrong usage, or input that cannot be read; nothing was begun";

void addFooter(CLI::App& line, const std::string& example, const ExitStatus& status) {
  std::string text = "Example: " + example + "\n\nEXIT STATUS";
  const std::string* const meanings[] = {&status.done, &status.problems, &status.notBegun};
  for (std::size_t code = 0; code < std::size(meanings); ++code) {
    if (!meanings[code]->empty()) text += "\n  " + std::to_string(code) + "  " + *meanings[code];
  }
  line.footer(text);
}

void addRange(CLI::App& line, FrameRange& range) {
  line.add_option("--from", range.from, "first frame, counted from 0")
      ->check(frameNumber())
      ->transform(decimal());
  line.add_option("--to", range.to, "last frame")->check(frameNumber())->transform(decimal());
}

CLI::Validator decimal() {
  const auto strip = [](std::string& text) -> std::string {
    const bool whole = text.find_first_not_of("0123456789") == std::string::npos;
    const std::size_t zeros = std::min(text.find_first_not_of('0'), text.size());
    if (whole && zeros > 0) text.erase(0, std::min(zeros, text.size() - 1));
    return "";
  };
  return {strip, ""};
}

// CLI11's own check takes NaN for a number of any range, and prints ranges with all their digits.
CLI::Validator between(double low, double high) {
  const auto check = [low, high](const std::string& text) -> std::string {
    double value = 0;
    const bool number = CLI::detail::lexical_cast(text, value);
    if (number && value >= low && value <= high) return "";
    return fmt::format("{} is no number from {} to {}", text, low, high);
  };
  return {check, fmt::format("{} to {}", low, high)};
}

CLI::Validator positive() {
  const auto check = [](const std::string& text) -> std::string {
    double value = 0;
    if (CLI::detail::lexical_cast(text, value) && std::isfinite(value) && value > 0) return "";
    return fmt::format("{} is no number above 0", text);
  };
  return {check, "POSITIVE"};
}

void addY4m(CLI::App& line, bool& y4m) {
  line.add_flag("--y4m", y4m, "on standard output Y4M, which tells size, depth and rate");
}

void addJson(CLI::App& line, bool& json) { line.add_flag("--json", json, "for programs"); }

}  // namespace KPF_TOOL

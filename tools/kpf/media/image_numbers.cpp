#include "tools/kpf/media/image_numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <regex>
#include <system_error>

namespace KPF_TOOL {
namespace {

namespace fs = std::filesystem;

/// What stands around the number, and how many digits it has at least.
struct Pattern {
  std::string before;
  std::size_t digits = 0;
  std::string behind;
};

std::optional<Pattern> parse(const std::string& file) {
  static const std::regex form(R"(([^%]*)%0?(\d{0,2})d([^%]*))");
  std::smatch match;
  if (!std::regex_match(file, match, form)) return std::nullopt;
  const std::string digits = match[2].str();
  return Pattern{match[1].str(), digits.empty() ? 1 : std::stoul(digits), match[3].str()};
}

std::optional<std::uint64_t> numberIn(const std::string& file, const Pattern& pattern) {
  constexpr std::size_t kMostDigits = 9;  // FFmpeg counts images with 31 bits
  const std::size_t around = pattern.before.size() + pattern.behind.size();
  if (file.size() <= around || !file.starts_with(pattern.before) ||
      !file.ends_with(pattern.behind)) {
    return std::nullopt;
  }
  const std::string digits = file.substr(pattern.before.size(), file.size() - around);
  if (digits.size() > kMostDigits || digits.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  const std::uint64_t number = std::stoul(digits);
  if (fmt::format("{:0{}}", number, pattern.digits) != digits) return std::nullopt;
  return number;
}

}  // namespace

bool isImagePattern(const std::string& name) {
  return parse(fs::path(name).filename().string()).has_value();
}

std::optional<ImageNumbers> imageNumbers(const std::string& name) {
  const fs::path path(name);
  const auto pattern = parse(path.filename().string());
  if (!pattern) return std::nullopt;
  std::optional<ImageNumbers> found;
  std::error_code unreadable;
  const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
  for (const auto& entry : fs::directory_iterator(folder, unreadable)) {
    const auto number = numberIn(entry.path().filename().string(), *pattern);
    if (!number) continue;
    if (!found) found = {*number, *number};
    found->first = std::min(found->first, *number);
    found->last = std::max(found->last, *number);
  }
  return found;
}

}  // namespace KPF_TOOL

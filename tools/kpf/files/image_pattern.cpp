#include "tools/kpf/files/image_pattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>

#include "paths/native_path.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kMostDigits = 20;  // of a number of 64 bits

#ifdef _WIN32
constexpr const char* kSeparators = "/\\";
#else
constexpr const char* kSeparators = "/";
#endif

std::size_t fileNameBegin(const std::string& name) { return name.find_last_of(kSeparators) + 1; }

}  // namespace

bool hasPercent(const std::string& name) {
  return name.find('%', fileNameBegin(name)) != std::string::npos;
}

std::optional<ImagePattern> ImagePattern::parse(const std::string& name) {
  const std::size_t begin = fileNameBegin(name);
  const std::size_t percent = name.find('%', begin);
  if (percent == std::string::npos || name.find('%', percent + 1) != std::string::npos) return {};
  ImagePattern pattern;
  const char* const digits = name.data() + percent + 1;
  const char* const end = name.data() + name.size();
  const char* const last = std::from_chars(digits, end, pattern.digits_).ptr;
  if (last == end || *last != 'd' || pattern.digits_ > kMostDigits) return {};
  pattern.padded_ = *digits == '0' && pattern.digits_ > 0;
  pattern.folder_ = name.substr(0, begin);
  pattern.file_ = name.substr(begin);
  pattern.before_ = name.substr(begin, percent - begin);
  pattern.behind_ = std::string(last + 1, end);
  return pattern;
}

std::string ImagePattern::nameOf(std::uint64_t number) const {
  return fmt::format("{}{}{:0>{}}{}", folder_, before_, number, digits_, behind_);
}

std::optional<std::uint64_t> ImagePattern::numberIn(const std::string& fileName) const {
  if (fileName.size() < before_.size() + digits_ + behind_.size()) return {};
  const char* const begin = fileName.data() + before_.size();
  const char* const end = fileName.data() + fileName.size() - behind_.size();
  std::uint64_t number = 0;
  const auto [last, error] = std::from_chars(begin, end, number);
  if (error != std::errc() || last != end) return {};
  // Compared as a whole: letters before and behind, and no zeros too many.
  return nameOf(number) == folder_ + fileName ? std::optional(number) : std::nullopt;
}

std::vector<std::uint64_t> ImagePattern::numbersThere() const {
  std::vector<std::uint64_t> numbers;
  std::error_code unreadable;
  const fs::path folder = PATHS::nativePath(folder_.empty() ? "." : folder_);
  for (const auto& entry : fs::directory_iterator(folder, unreadable)) {
    if (const auto number = numberIn(entry.path().filename().string())) numbers.push_back(*number);
  }
  return numbers;
}

std::string ImagePattern::withFoldersEscaped() const {
  std::string escaped;
  for (const char letter : folder_) escaped.append(letter == '%' ? 2 : 1, letter);
  return escaped + file_;
}

std::optional<ImagePattern::Range> ImagePattern::rangeThere() const {
  const std::vector<std::uint64_t> numbers = numbersThere();
  if (numbers.empty()) return std::nullopt;
  const auto [first, last] = std::minmax_element(numbers.begin(), numbers.end());
  return Range{*first, *last};
}

}  // namespace KPF_TOOL

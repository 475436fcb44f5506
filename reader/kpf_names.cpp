#include "reader/kpf_names.h"

#include <charconv>
#include <filesystem>
#include <system_error>
#include <vector>

namespace KPF_READER {
namespace fs = std::filesystem;
namespace {

constexpr char kExtension[] = ".div";

/// As the writer derives it: the name up to its last dot is the folder; the separator is the last
/// `/` in that, else the last `\`, else `\`.
std::string writersPrefix(const std::string& headerPath, std::size_t dot) {
  std::string folder = headerPath.substr(0, dot);
  std::size_t separator = folder.rfind('/');
  if (separator == std::string::npos) separator = folder.rfind('\\');
  const bool found = separator != std::string::npos;
  const char mark = found ? folder[separator] : '\\';
  const std::string base = found ? folder.substr(separator + 1) : folder;
  if (folder.empty() || folder.back() != mark) folder += mark;
  return folder + base + "_";
}

/// The places to look in, the most likely first.
std::vector<std::string> prefixes(const std::string& headerPath) {
  const std::size_t dot = headerPath.rfind('.');
  if (dot == std::string::npos) {
    throw RecordingError(headerPath, 0, "the name has no extension, so the data has no folder");
  }
  const fs::path header(headerPath);
  const std::string base = header.stem().string();
  const fs::path beside = header.parent_path();
  return {writersPrefix(headerPath, dot), (beside / base / (base + "_")).string(),
          (beside / (base + "\\" + base + "_")).string()};
}

/// The number in `name` between `start` and ".div", written as the writer writes it; else 0.
std::uint32_t numberIn(const std::string& name, const std::string& start) {
  if (name.compare(0, start.size(), start) != 0) return 0;
  std::uint32_t number = 0;
  std::from_chars(name.data() + start.size(), name.data() + name.size(), number);
  return name == divFileName(start, number) ? number : 0;
}

}  // namespace

std::string divFileName(const std::string& prefix, std::uint32_t number) {
  std::string digits = std::to_string(number);
  if (digits.size() < 4) digits.insert(0, 4 - digits.size(), '0');
  return prefix + digits + kExtension;
}

std::string findDivPrefix(const std::string& headerPath) {
  const std::vector<std::string> candidates = prefixes(headerPath);
  for (const std::string& prefix : candidates) {
    if (!findDivFiles(prefix).empty()) return prefix;
  }
  return candidates.front();
}

std::map<std::uint32_t, std::string> findDivFiles(const std::string& prefix) {
  const fs::path path(prefix);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  const std::string start = path.filename().string();
  std::map<std::uint32_t, std::string> files;
  std::error_code stopped;
  for (fs::directory_iterator entry(folder, stopped), none; entry != none;
       entry.increment(stopped)) {
    const std::uint32_t number = numberIn(entry->path().filename().string(), start);
    if (number != 0) files.emplace(number, divFileName(prefix, number));
  }
  return files;
}

}  // namespace KPF_READER

#include "tools/kpf/checks/renamed.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "format/kpf_file_names.h"
#include "paths/native_path.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
namespace {

fs::path orHere(const fs::path& folder) { return folder.empty() ? fs::path(".") : folder; }

/// The name of a recording that `file` would be the first data file of; empty when it is none.
std::string baseOf(const fs::path& file) {
  const std::string name = file.filename().string();
  const std::string prefix = KPF_FORMAT::divFilePrefix(name);
  if (prefix.size() < 2) return "";
  std::string base = prefix.substr(0, prefix.size() - 1);
  return KPF_FORMAT::divFileNumber({"", base}, name) == 1 ? base : "";
}

/// The data files have kept the old name, in a folder that has the new one.
std::string inOwnFolder(const fs::path& header) {
  const fs::path folder = header.parent_path() / header.stem();
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), none; !error && entry != none;
       entry.increment(error)) {
    const std::string base = baseOf(entry->path());
    if (base.empty()) continue;
    return fmt::format(
        "no data file is there, but {}: if it is of this recording, rename the header to {}{} and "
        "its folder to {}",
        entry->path().string(), base, header.extension().string(), base);
  }
  return "";
}

/// The data files are whole in their folder, and it has no header.
std::string inAnotherFolder(const fs::path& header) {
  std::error_code error;
  for (fs::directory_iterator entry(orHere(header.parent_path()), error), none;
       !error && entry != none; entry.increment(error)) {
    const std::string base = entry->path().filename().string();
    const fs::path first = entry->path() / KPF_FORMAT::divFileName({"", base}, 1);
    fs::path owner = entry->path();
    owner += header.extension();
    std::error_code unknown;
    if (!fs::exists(first, unknown) || fs::exists(owner, unknown)) continue;
    return fmt::format(
        "no data file is there, and {} has no header: if it is of this recording, rename the "
        "header "
        "to {}{}",
        first.string(), base, header.extension().string());
  }
  return "";
}

}  // namespace

std::string whereDataMayBe(const KPF_READER::Recording& recording) {
  const fs::path header = PATHS::nativePath(recording.path());
  const std::string text = inOwnFolder(header);
  return text.empty() ? inAnotherFolder(header) : text;
}

}  // namespace KPF_TOOL

#include "tools/kpf/recording/target.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "format/kpf_file_names.h"
#include "format/kpf_status.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;

std::string headerPath(const std::string& output) {
  const fs::path path(output);
  if (path.stem().empty() || path.extension().string().size() < 2) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} has no extension", quoted(output)),
                    "Name the recording like clip.kpf.");
  }
  return path.has_parent_path() ? output : "./" + output;
}

std::vector<std::string> filesOf(const std::string& header) {
  std::vector<std::string> files;
  for (const std::string& name : {header, KPF_FORMAT::statusFileName(header)}) {
    if (fs::exists(name)) files.push_back(name);
  }
  const auto names = KPF_FORMAT::dataNames(KPF_FORMAT::withoutExtension(header).value_or(header));
  if (!fs::is_directory(names.folder)) return files;
  for (const auto& entry : fs::directory_iterator(names.folder)) {
    const std::string name = entry.path().filename().string();
    if (KPF_FORMAT::divFileNumber({"", names.base}, name) != 0) {
      files.push_back(entry.path().string());
    }
  }
  return files;
}

// The folder stays, and with it whatever else the user keeps there.
void clearTarget(const std::string& header, bool force) {
  const std::vector<std::string> files = filesOf(header);
  if (files.empty()) return;
  if (!force) {
    throw ToolError(Outcome::kRefused, fmt::format("{} is there already", escaped(files.front())),
                    "Choose another name, or give --force to replace the recording.");
  }
  for (const std::string& file : files) fs::remove(file);
}

void checkRoom(const std::string& header, std::uint64_t bytes) {
  const fs::path folder = fs::path(header).parent_path();
  std::error_code unknown;
  const fs::space_info space = fs::space(folder, unknown);
  if (unknown) {
    throw ToolError(Outcome::kRefused,
                    fmt::format("{}: {}", escaped(folder.string()), unknown.message()),
                    "Make the folder first.");
  }
  if (bytes <= space.available) return;
  throw ToolError(Outcome::kRefused,
                  fmt::format("the recording takes {}, the disk has room for {}",
                              sizeText(static_cast<double>(bytes)),
                              sizeText(static_cast<double>(space.available))),
                  "Free some space, or record fewer frames with --frames.");
}

}  // namespace KPF_TOOL

#include "tools/kpf/recording/target.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "format/kpf_file_names.h"
#include "format/kpf_fixed.h"
#include "format/kpf_layout.h"
#include "format/kpf_status.h"
#include "kpf_reader.h"
#include "paths/native_path.h"
#include "tools/kpf/records/checksum_file.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
using PATHS::nativePath;
namespace {

/// Whether a file is the header of a recording, by its size and by how it begins.
bool isHeader(const std::string& name) {
  std::error_code unknown;
  if (!fs::is_regular_file(nativePath(name), unknown)) return false;
  if (fs::file_size(nativePath(name), unknown) != KPF_FORMAT::HEADER::kSize) return false;
  std::string begin(KPF_FORMAT::kVersion.size(), '\0');
  std::ifstream(nativePath(name), std::ios::binary)
      .read(begin.data(), static_cast<std::streamsize>(begin.size()));
  return begin == KPF_FORMAT::kVersion;
}

ToolError inTheWay(const std::string& problem, const std::string& advice) {
  return {Outcome::kRefused, problem, advice};
}

ToolError cannotLook(const std::string& name, const std::error_code& error) {
  return inTheWay(fmt::format("cannot look at {}: {}", escaped(name), error.message()),
                  "Choose another name or another folder.");
}

/// @throws ToolError where the system does not tell: what it hides may be in the way.
fs::file_status statusOf(const std::string& name) {
  std::error_code error;
  const fs::file_status status = fs::status(nativePath(name), error);
  if (status.type() == fs::file_type::none) throw cannotLook(name, error);
  return status;
}

/// Names without their extensions are all that data files know of their header: those of clip.kpf
/// and clip.rec would be the same. @throws ToolError where another recording has them.
void checkNeighbours(const std::string& header) {
  const fs::path path = nativePath(header);
  const std::optional<FileId> own = fileId(header);
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(path.parent_path(), error)) {
    if (entry.path().stem() != path.stem() || entry.path().filename() == path.filename()) continue;
    const std::string other = entry.path().string();
    if (!isHeader(other) || fileId(other) == own) continue;
    throw inTheWay(fmt::format("the data files would be those of {}", escaped(other)),
                   "Choose a name that differs in more than its extension.");
  }
}

std::uint64_t bytesOf(const std::vector<std::string>& files) {
  std::uint64_t bytes = 0;
  for (const std::string& file : files) {
    std::error_code unknown;
    const std::uint64_t size = fs::file_size(nativePath(file), unknown);
    if (!unknown) bytes += size;
  }
  return bytes;
}

}  // namespace

std::string withFolder(const std::string& header) {
  return nativePath(header).has_parent_path() ? header : "./" + header;
}

std::string headerPath(const std::string& output) {
  const fs::path path = nativePath(output);
  if (path.stem().empty() || path.extension().string().size() < 2) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} has no extension", quoted(output)),
                    "Name the recording like clip.kpf.");
  }
  return withFolder(output);
}

std::vector<std::string> filesOf(const std::string& header) {
  std::vector<std::string> files;
  for (const std::string& name :
       {header, KPF_FORMAT::statusFileName(header), checksumFileName(header)}) {
    if (fs::exists(statusOf(name))) files.push_back(name);
  }
  const auto names = KPF_FORMAT::dataNamesOf(header);
  if (!fs::is_directory(statusOf(names.folder))) return files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(nativePath(names.folder), error)) {
    const std::string name = entry.path().filename().string();
    if (KPF_FORMAT::divFileNumber({"", names.base}, name) != 0) {
      files.push_back(entry.path().string());
    }
  }
  if (error) throw cannotLook(names.folder, error);
  return files;
}

void checkTarget(const std::string& header, bool force, const FileIds& input) {
  checkNeighbours(header);
  // Where it is missing, the data may be those of a header that was renamed.
  const bool belongs = fs::exists(statusOf(header));
  for (const std::string& file : filesOf(header)) {
    const std::string name = escaped(file);
    if (input.holds(file)) {
      throw inTheWay(fmt::format("{} is what is read", name),
                     "Choose another name: the input is never replaced.");
    }
    if (file == header && !isHeader(header)) {
      throw inTheWay(fmt::format("{} is there already, and is no recording", name),
                     "Choose another name: only recordings are replaced.");
    }
    if (force && !belongs && file != KPF_FORMAT::statusFileName(header)) {
      throw inTheWay(fmt::format("{} is there already, and {} is not", name, escaped(header)),
                     "Choose another name, or move it away: only recordings are replaced.");
    }
    if (force) continue;
    throw inTheWay(fmt::format("{} is there already", name),
                   "Choose another name, or give --force to replace the recording.");
  }
}

// The folder stays, and with it whatever else the user keeps there.
void clearTarget(const std::string& header, bool force, const FileIds& input) {
  checkTarget(header, force, input);
  for (const std::string& file : filesOf(header)) {
    std::error_code error;
    fs::remove(nativePath(file), error);
    if (!error) continue;
    throw inTheWay(fmt::format("cannot remove {}: {}", escaped(file), error.message()),
                   "Choose another name, or remove the older recording yourself.");
  }
}

void checkRoom(const std::string& header, std::uint64_t bytes) {
  const fs::path folder = nativePath(header).parent_path();
  std::error_code unknown;
  const fs::space_info space = fs::space(folder, unknown);
  if (unknown) {
    throw ToolError(Outcome::kRefused,
                    fmt::format("{}: {}", escaped(folder.string()), unknown.message()),
                    "Make the folder first.");
  }
  const std::uint64_t available = space.available + bytesOf(filesOf(header));
  if (bytes <= available) return;
  throw ToolError(
      Outcome::kRefused,
      fmt::format("the recording takes {}, the disk has room for {}",
                  sizeText(static_cast<double>(bytes)), sizeText(static_cast<double>(available))),
      "Free some space, or record fewer frames with --frames.");
}

std::uint64_t recordsOnDisk(const std::string& header) {
  try {
    return KPF_READER::Recording(header, KPF_READER::Access::kSparse).recordCount();
  } catch (const KPF_READER::RecordingError&) {
    return 0;  // somebody took it away
  }
}

std::string obstacleTo(const std::string& header, bool isThere, std::uint64_t bytes) {
  const auto names = KPF_FORMAT::dataNamesOf(header);
  std::error_code unknown;
  if (!isThere || !fs::is_directory(nativePath(names.folder), unknown)) {
    return "its files were moved or removed meanwhile";
  }
  const fs::space_info space = fs::space(nativePath(names.folder), unknown);
  if (!unknown && space.available < bytes) return "the disk is full";
  return "the system did not take the others, see the lines above";
}

}  // namespace KPF_TOOL

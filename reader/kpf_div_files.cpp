#include "reader/kpf_div_files.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "paths/native_path.h"
#include "reader/kpf_reader.h"

namespace KPF_READER {
namespace fs = std::filesystem;
using KPF_FORMAT::DataNames;
namespace {

/// The places to look in, the most likely first: where the writer puts them; files that it put
/// beside the header, with a backslash in their names, and that were moved into a folder; the same
/// files where it put them, seen from another folder.
std::vector<DataNames> candidates(const std::string& headerPath) {
  const std::optional<std::string> stem = KPF_FORMAT::withoutExtension(headerPath);
  if (!stem) {
    throw RecordingError(headerPath, 0, "the name has no extension, so the data has no folder");
  }
  const fs::path header = PATHS::nativePath(headerPath);
  const std::string base = header.stem().string();
  const fs::path folder = header.parent_path() / header.stem();
  return {
      KPF_FORMAT::dataNames(*stem), {(folder / "").string(), base}, {folder.string() + "\\", base}};
}

/// `name` in the bytes of names. What Windows keeps but no text can spell is nobody's data file.
std::string spelled(const fs::path& name) {
  try {
    return name.string();
  } catch (const fs::filesystem_error&) {
    return {};
  }
}

/// A folder that is not there, or a file in its place, or one that no system can name, has no data
/// files; one that cannot be read may have them all.
bool isMissing(const std::error_code& error) {
  return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory ||
         error == std::errc::filename_too_long;
}

}  // namespace

DataNames findDataNames(const std::string& headerPath) {
  const std::vector<DataNames> places = candidates(headerPath);
  for (const DataNames& names : places) {
    if (!findDivFiles(names).empty()) return names;
  }
  return places.front();
}

std::map<std::uint32_t, std::string> findDivFiles(const DataNames& names) {
  const fs::path path = PATHS::nativePath(names.folder + names.base);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  const DataNames inFolder{"", path.filename().string()};
  std::map<std::uint32_t, std::string> files;
  std::error_code stopped;
  for (fs::directory_iterator entry(folder, stopped), none; !stopped && entry != none;
       entry.increment(stopped)) {
    const std::uint32_t number =
        KPF_FORMAT::divFileNumber(inFolder, spelled(entry->path().filename()));
    if (number != 0) files.emplace(number, KPF_FORMAT::divFileName(names, number));
  }
  if (stopped && !isMissing(stopped)) {
    throw RecordingError(spelled(folder), 0, stopped.message());
  }
  return files;
}

}  // namespace KPF_READER

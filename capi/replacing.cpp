#include "capi/replacing.h"

#include <filesystem>
#include <system_error>

#include "capi/calls.h"
#include "capi/names.h"
#include "format/kpf_status.h"
#include "paths/native_path.h"
#include "reader/kpf_div_files.h"
#include "reader/kpf_reader.h"

namespace KPF_C {
namespace {

namespace fs = std::filesystem;
using PATHS::nativePath;

bool isThere(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

void requireRecording(const std::string& name) {
  try {
    const KPF_READER::Recording parsed(name);
  } catch (const KPF_READER::RecordingError& error) {
    throw Failure(KPF_ERROR_EXISTS, std::string("what is there is no recording: ") + error.what());
  }
}

void remove(const std::string& name) {
  std::error_code error;
  const fs::path path = nativePath(name);
  if (isThere(path)) fs::remove(path, error);
  if (error) throw Failure(KPF_ERROR_OPEN, name + ": cannot be removed: " + error.message());
}

}  // namespace

// The header file goes last: until then what is left is still found as a recording.
void makeWay(const std::string& name, bool replace) {
  const fs::path header = nativePath(name);
  const std::string status = KPF_FORMAT::statusFileName(name);
  const auto dataFiles = KPF_READER::findDivFiles(dataNamesOf(name));
  if (!isThere(header) && dataFiles.empty()) return remove(status);
  if (!replace) {
    const std::string& found = isThere(header) ? name : dataFiles.begin()->second;
    throw Failure(KPF_ERROR_EXISTS, found + ": already there; replace removes a recording");
  }
  if (isThere(header)) requireRecording(name);
  for (const auto& [number, file] : dataFiles) remove(file);
  remove(status);
  remove(name);
}

}  // namespace KPF_C

#include "tools/kpf/files/new_file.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>

#include "paths/native_path.h"
#include "tools/kpf/files/file_system.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
using PATHS::nativePath;
namespace {

std::string adviceFor(const std::error_code& error) {
  switch (error.default_error_condition().value()) {
    case ENOENT:
    case ENOTDIR:
      return "Make the folder first.";
    case EACCES:
    case EPERM:
    case EROFS:
      return "Choose a folder that you may write to.";
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return "Free some space.";
    case EFBIG:
      return "Lift the limit on the size of files (ulimit -f), or choose another file system.";
    default:
      return "Choose another name or another folder.";
  }
}

}  // namespace

ToolError cannotWriteFile(const std::string& name, const std::error_code& error) {
  return {Outcome::kWriteFailed, fmt::format("cannot write {}: {}", escaped(name), error.message()),
          adviceFor(error)};
}

void checkFree(const std::string& name, const Destination& destination) {
  std::error_code unknown;
  // The link itself: one that leads nowhere is in the way as well.
  const fs::file_status status = fs::symlink_status(nativePath(name), unknown);
  if (!fs::exists(status)) return;
  if (destination.input.holds(name)) {
    throw ToolError(Outcome::kRefused, fmt::format("{} is what is read", escaped(name)),
                    "Choose another name: the input is never replaced.");
  }
  if (!fs::is_regular_file(status) && !fs::is_symlink(status)) {
    throw ToolError(Outcome::kRefused, fmt::format("{} is no file", escaped(name)),
                    "Choose another name.");
  }
  if (!destination.force) {
    throw ToolError(Outcome::kRefused, fmt::format("{} is there already", escaped(name)),
                    "Choose another name, or give --force to replace it.");
  }
}

// With the process in the name two of them do not meet.
NewFile::NewFile(const std::string& name, const Destination& destination)
    : name_(name),
      destination_(destination),
      temporary_(fmt::format("{}.{}.part", name, getpid())) {
  checkFree(name_, destination_);
  if (const std::error_code error = makeNewFile(temporary_)) throw cannotWriteFile(name_, error);
}

NewFile::~NewFile() {
  std::error_code ignored;
  if (!done_) fs::remove(nativePath(temporary_), ignored);
}

void NewFile::write(const void* bytes, std::size_t size) {
  std::ofstream file(nativePath(temporary_), std::ios::binary);
  file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  // Closing may be what fails: not before that is the file with the system.
  if (file) file.close();
  if (!file) throw cannotWriteFile(name_, errno);
}

void NewFile::commit() {
  std::error_code error;
  if (destination_.force) {
    checkFree(name_, destination_);
    fs::rename(nativePath(temporary_), nativePath(name_), error);
  } else {
    error = moveWhereFree(temporary_, name_);
  }
  done_ = !error;
  if (done_) return;
  if (error == std::errc::file_exists) checkFree(name_, destination_);  // tells what is in the way
  throw cannotWriteFile(name_, error);
}

}  // namespace KPF_TOOL

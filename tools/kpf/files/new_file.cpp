#include "tools/kpf/files/new_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

std::string adviceFor(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "Make the folder first.";
    case EACCES:
    case EPERM:
    case EROFS:
      return "Choose a folder that you may write to.";
    case ENOSPC:
    case EDQUOT:
      return "Free some space.";
    default:
      return "Choose another name or another folder.";
  }
}

ToolError cannotWrite(const std::string& name) {
  const int error = errno;
  return {Outcome::kWriteFailed,
          fmt::format("cannot write {}: {}", escaped(name), std::generic_category().message(error)),
          adviceFor(error)};
}

}  // namespace

void checkFree(const std::string& name, const Destination& destination) {
  struct stat status {};
  // The link itself: one that leads nowhere is in the way as well.
  if (lstat(name.c_str(), &status) != 0) return;
  if (destination.input.holds(name)) {
    throw ToolError(Outcome::kRefused, fmt::format("{} is what is read", escaped(name)),
                    "Choose another name: the input is never replaced.");
  }
  if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) {
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
  const int file = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0) throw cannotWrite(name_);
  close(file);
}

NewFile::~NewFile() {
  if (!done_) unlink(temporary_.c_str());
}

void NewFile::commit() {
  checkFree(name_, destination_);
  if (std::rename(temporary_.c_str(), name_.c_str()) != 0) throw cannotWrite(name_);
  done_ = true;
}

}  // namespace KPF_TOOL

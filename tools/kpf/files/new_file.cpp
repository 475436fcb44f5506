#include "tools/kpf/files/new_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "tools/kpf/terminal/text.h"

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
    case EFBIG:
      return "Lift the limit on the size of files (ulimit -f), or choose another file system.";
    default:
      return "Choose another name or another folder.";
  }
}

ToolError cannotWrite(const std::string& name) { return cannotWriteFile(name, errno); }

}  // namespace

ToolError cannotWriteFile(const std::string& name, int error) {
  return {Outcome::kWriteFailed,
          fmt::format("cannot write {}: {}", escaped(name), std::generic_category().message(error)),
          adviceFor(error)};
}

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

void NewFile::write(const void* bytes, std::size_t size) {
  std::FILE* const file = std::fopen(temporary_.c_str(), "wb");
  if (file == nullptr) throw cannotWrite(name_);
  // Closing may be what fails: not before that is the file with the system.
  const bool written = std::fwrite(bytes, 1, size, file) == size;
  const int error = errno;
  if (std::fclose(file) == 0 && written) return;
  if (!written) errno = error;
  throw cannotWrite(name_);
}

void NewFile::commit() {
  checkFree(name_, destination_);
  if (std::rename(temporary_.c_str(), name_.c_str()) != 0) throw cannotWrite(name_);
  done_ = true;
}

}  // namespace KPF_TOOL

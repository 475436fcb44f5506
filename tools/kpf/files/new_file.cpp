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

bool moveWhereFree(const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
  const int result = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return result == 0;
#endif
  return linkWhereFree(from, to);
}

bool linkWhereFree(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) == 0) {
    unlink(from.c_str());
    return true;
  }
  // Where there are no links either, this one look has to do.
  return errno != EEXIST && std::rename(from.c_str(), to.c_str()) == 0;
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
  if (destination_.force) {
    checkFree(name_, destination_);
    done_ = std::rename(temporary_.c_str(), name_.c_str()) == 0;
  } else {
    done_ = moveWhereFree(temporary_, name_);
  }
  if (done_) return;
  const int error = errno;
  if (error == EEXIST) checkFree(name_, destination_);  // which tells what is in the way
  throw cannotWriteFile(name_, error);
}

}  // namespace KPF_TOOL

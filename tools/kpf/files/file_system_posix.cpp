#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>
#include <system_error>

#include "tools/kpf/files/file_system.h"

namespace KPF_TOOL {
namespace {

FileId idOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

std::error_code lastError() { return {errno, std::generic_category()}; }

}  // namespace

std::optional<FileId> fileId(const std::string& name) {
  struct stat status {};
  if (stat(name.c_str(), &status) != 0) return std::nullopt;
  return idOf(status);
}

std::optional<FileId> fileId(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return idOf(status);
}

std::error_code makeNewFile(const std::string& name) {
  const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0) return lastError();
  close(file);
  return {};
}

std::error_code moveWhereFree(const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
  const int result = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
  if (result == 0) return {};
  if (errno != EINVAL && errno != ENOSYS) return lastError();
#endif
  return linkWhereFree(from, to);
}

std::error_code linkWhereFree(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) == 0) {
    unlink(from.c_str());
    return {};
  }
  if (errno == EEXIST) return lastError();
  // Where there are no links either, this one look has to do.
  return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : lastError();
}

FolderLock::FolderLock(const std::string& folder)
    : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (descriptor_ < 0) return;
  others_ = flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

FolderLock::~FolderLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace KPF_TOOL

// What commands ask of the file system and the standard library does not offer; a file a system.
#ifndef KPF_FILE_SYSTEM_H
#define KPF_FILE_SYSTEM_H

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace KPF_TOOL {

/// Disk, and number on it.
using FileId = std::pair<std::uint64_t, std::uint64_t>;

/// Of what `name` leads to; nothing where nothing is.
std::optional<FileId> fileId(const std::string& name);

/// Of the file that an open descriptor writes to; nothing for a pipe, a terminal and the like.
std::optional<FileId> fileId(int descriptor);

/// Makes an empty file; it is an error when something of that name is there.
std::error_code makeNewFile(const std::string& name);

/// Gives a file another name where nothing has it yet, in one step, as no check beforehand can.
std::error_code moveWhereFree(const std::string& from, const std::string& to);

#ifndef _WIN32
/// The same by a link, for file systems that do not know that step.
std::error_code linkWhereFree(const std::string& from, const std::string& to);
#endif

/// A folder that one process at a time holds, until it lets go or ends. Where the system knows no
/// such thing, and where there is no such folder, nobody else has it.
class FolderLock {
 public:
  explicit FolderLock(const std::string& folder);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  /// Whether another process, or another object of this one, holds it.
  bool isOthers() const { return others_; }

 private:
  int descriptor_ = -1;
  bool others_ = false;
};

}  // namespace KPF_TOOL

#endif

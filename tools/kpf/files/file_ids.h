// Files by what they are, not by what they are called.
#ifndef KPF_FILE_IDS_H
#define KPF_FILE_IDS_H

#include <sys/stat.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KPF_TOOL {

/// A set of files by device and inode: links, other spellings and other folders make no difference.
class FileIds {
 public:
  FileIds() = default;
  /// Takes what is there; what is not is no file that could be harmed.
  explicit FileIds(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      struct stat status {};
      if (stat(name.c_str(), &status) == 0) ids_.insert(idOf(status));
    }
  }

  void add(const FileIds& others) { ids_.insert(others.ids_.begin(), others.ids_.end()); }

  /// Whether that is what `name` leads to.
  bool holds(const std::string& name) const {
    struct stat status {};
    return stat(name.c_str(), &status) == 0 && ids_.count(idOf(status)) != 0;
  }

  /// Whether that is what an open descriptor writes to.
  bool holds(int descriptor) const {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           ids_.count(idOf(status)) != 0;
  }

 private:
  using Id = std::pair<dev_t, ino_t>;
  static Id idOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

  std::set<Id> ids_;
};

}  // namespace KPF_TOOL

#endif

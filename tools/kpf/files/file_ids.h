// Files by what they are, not by what they are called.
#ifndef KPF_FILE_IDS_H
#define KPF_FILE_IDS_H

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/kpf/files/file_system.h"

namespace KPF_TOOL {

/// A set of files by their numbers: links, other spellings and other folders make no difference.
class FileIds {
 public:
  FileIds() = default;
  /// Takes what is there; what is not is no file that could be harmed.
  explicit FileIds(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (const auto id = fileId(name)) ids_.insert(*id);
    }
  }

  void add(const FileIds& others) { ids_.insert(others.ids_.begin(), others.ids_.end()); }

  /// Whether that is what `name` leads to.
  bool holds(const std::string& name) const { return has(fileId(name)); }

  /// Whether that is what an open descriptor writes to.
  bool holds(int descriptor) const { return has(fileId(descriptor)); }

 private:
  bool has(const std::optional<FileId>& id) const { return id && ids_.count(*id) != 0; }

  std::set<FileId> ids_;
};

}  // namespace KPF_TOOL

#endif

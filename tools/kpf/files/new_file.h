// Files that a command makes.
#ifndef KPF_NEW_FILE_H
#define KPF_NEW_FILE_H

#include <cstddef>
#include <string>
#include <system_error>

#include "tools/kpf/files/file_ids.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

/// Where a command was told to write, and what it must not write over.
struct Destination {
  std::string name;
  bool force = false;  // whether other files of that name may be replaced
  FileIds input;       // files that are read, and are not replaced by anybody's wish
};

/// @param name of a file that `destination` stands for.
/// @throws ToolError when something is there that may not be replaced.
void checkFree(const std::string& name, const Destination& destination);

/// What to say when the system does not take what is written to `name`.
ToolError cannotWriteFile(const std::string& name, const std::error_code& error);

/// @param error by its number, as errno has it.
inline ToolError cannotWriteFile(const std::string& name, int error) {
  return cannotWriteFile(name, std::error_code(error, std::generic_category()));
}

/**
 * A file that bears its name only when it is whole.
 *
 * Until then it is written beside its place under a name of its own, so that whatever stood there
 * is still there when a disk fills up, a program dies or somebody changes his mind.
 */
class NewFile {
 public:
  /// Makes the empty file. @throws ToolError as checkFree does, and where it cannot be made.
  NewFile(const std::string& name, const Destination& destination);
  /// Removes what was not committed.
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// The name under which it is written, closed by whoever opens it before commit().
  const std::string& path() const { return temporary_; }

  /// Writes all of it, where nobody else does. @throws ToolError when the system does not take it.
  void write(const void* bytes, std::size_t size);

  /// Gives the file its name. @throws ToolError when something has come there meanwhile.
  void commit();

 private:
  const std::string name_;
  const Destination& destination_;
  const std::string temporary_;
  bool done_ = false;
};

}  // namespace KPF_TOOL

#endif

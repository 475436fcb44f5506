// The files that a recording is about to take.
#ifndef KPF_TARGET_H
#define KPF_TARGET_H

#include <cstdint>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// A name without a folder is taken as one in the current folder: the library would put the data
/// files of `clip.kpf` beside it, under names with a backslash. @throws ToolError without
/// extension.
std::string headerPath(const std::string& output);

/// Files of a recording of that name that are there: header, data files, status file.
std::vector<std::string> filesOf(const std::string& header);

/// Sees that nothing is in the way: with `force` the older recording is removed, files of other
/// kinds stay. @throws ToolError without it.
void clearTarget(const std::string& header, bool force);

/// @throws ToolError when `bytes` do not fit the disk that `header` will lie on.
void checkRoom(const std::string& header, std::uint64_t bytes);

}  // namespace KPF_TOOL

#endif

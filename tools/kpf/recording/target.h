// The files that a recording is about to take.
#ifndef KPF_TARGET_H
#define KPF_TARGET_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/files/file_ids.h"

namespace KPF_TOOL {

/// A name without a folder is taken as one in the current folder: the library would put the data
/// files of `clip.kpf` beside it, under names with a backslash.
std::string withFolder(const std::string& header);

/// The same of a recording that is to be made. @throws ToolError without extension.
std::string headerPath(const std::string& output);

/// Files of a recording of that name that are there: header, data files, status file,
/// checksums. @throws ToolError where the system does not tell.
std::vector<std::string> filesOf(const std::string& header);

/// Sees that nothing is in the way that may not be replaced, and removes nothing.
/// @param force whether an older recording may be; what is none never is.
/// @param input files that are read, which nobody's wish replaces. @throws ToolError.
void checkTarget(const std::string& header, bool force, const FileIds& input = {});

/// The same, and then removes the older recording; files of other kinds stay.
void clearTarget(const std::string& header, bool force, const FileIds& input = {});

/// @throws ToolError when `bytes` do not fit the disk that `header` will lie on, not even when the
/// recording that is there makes room for them.
void checkRoom(const std::string& header, std::uint64_t bytes);

/// How many records are there, by a look at the files themselves: what a writer believes is no
/// proof.
std::uint64_t recordsOnDisk(const std::string& header);

/// Why the files of a recording take no more, as far as the disk shows.
/// @param isThere whether the header is still that of the recording. @param bytes of the next
/// record.
std::string obstacleTo(const std::string& header, bool isThere, std::uint64_t bytes);

}  // namespace KPF_TOOL

#endif

// Finds the data files that belong to a header file.
#ifndef KPF_DIV_FILES_H
#define KPF_DIV_FILES_H

#include <cstdint>
#include <map>
#include <string>

#include "format/kpf_file_names.h"

namespace KPF_READER {

/// What the data files are called. Where the writer's own rule leads to no data file, other places
/// that such files are known to end up in are tried.
/// @throws RecordingError when the header's name has no extension to take off.
KPF_FORMAT::DataNames findDataNames(const std::string& headerPath);

/// Paths of what is called like a data file of these names, by number.
/// @throws RecordingError when the folder is there and cannot be read.
std::map<std::uint32_t, std::string> findDivFiles(const KPF_FORMAT::DataNames& names);

}  // namespace KPF_READER

#endif

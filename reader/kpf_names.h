// The names of a recording's files, derived from the path of its header file.
#ifndef KPF_NAMES_H
#define KPF_NAMES_H

#include <map>
#include <string>

#include "reader/kpf_reader.h"

namespace KPF_READER {

/// Data file `number` is `prefix` and the number, at least four digits, and ".div".
std::string divFileName(const std::string& prefix, std::uint32_t number);

/// What the names of the data files begin with, folder included. Where the writer's own rule leads
/// to no data file, other places that such files are known to end up in are tried.
/// @throws RecordingError when the header's name has no extension to take off.
std::string findDivPrefix(const std::string& headerPath);

/// Paths of what bears the name of a data file with this prefix, by number.
std::map<std::uint32_t, std::string> findDivFiles(const std::string& prefix);

}  // namespace KPF_READER

#endif

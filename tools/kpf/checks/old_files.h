// Data files that an older recording of the same name has left.
#ifndef KPF_OLD_FILES_H
#define KPF_OLD_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "tools/kpf/records/records.h"

namespace KPF_TOOL {

using Moment = std::pair<std::int64_t, std::uint32_t>;  // seconds, microseconds

/// Whether data file `number` begins before the recording does. Its first number, which the older
/// recording counted in frames a file, tells it from times of a caller's own.
/// @param begin of the recording. @return what to say of it; nothing when it is not old.
std::optional<std::string> olderThan(const Moment& begin, std::uint32_t number,
                                     const Record& first);

/// What to say of a data file that is called as if it belonged to a recording and has a number
/// beyond its end.
std::string leftoverText(const std::string& path, std::uint32_t number);

}  // namespace KPF_TOOL

#endif

// Standard output, where results go.
#ifndef KPF_STANDARD_OUTPUT_H
#define KPF_STANDARD_OUTPUT_H

#include <optional>
#include <string>

namespace KPF_TOOL {

/// Writes out what was printed. @return why not all of it could be written; nothing when it was.
std::optional<std::string> flushStandardOutput();

}  // namespace KPF_TOOL

#endif

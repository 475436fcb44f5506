// Standard output, where results go.
#ifndef KPF_STANDARD_OUTPUT_H
#define KPF_STANDARD_OUTPUT_H

#include <optional>
#include <string>

namespace KPF_TOOL {

/// To be called first. Where standard input, output or error is closed its descriptor is taken, or
/// the next file that is opened would have it, and results would be printed into a recording.
void holdStandardDescriptors();

/// Writes out what was printed. @return why not all of it could be written; nothing when it was.
std::optional<std::string> flushStandardOutput();

}  // namespace KPF_TOOL

#endif

// The status file, which a recording that was closed too early has beside its header file.
#ifndef KPF_STATUS_H
#define KPF_STATUS_H

#include <string>
#include <string_view>

namespace KPF_FORMAT {

/// Its text. A text file's: where lines end in CR LF, so do these.
inline constexpr std::string_view kStatusText =
    "Packed stream is incomplete and was not fully processed.\n"
    "Please review log data for possible error conditions.\n"
    "Status:\n";

inline std::string statusFileName(const std::string& headerPath) {
  return headerPath + ".incomplete.txt";
}

}  // namespace KPF_FORMAT

#endif

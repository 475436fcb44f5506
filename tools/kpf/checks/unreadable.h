// What the system cannot read, as a finding.
#ifndef KPF_UNREADABLE_H
#define KPF_UNREADABLE_H

#include <cstdint>
#include <optional>
#include <string>

#include "kpf_reader.h"
#include "tools/kpf/checks/findings.h"

namespace KPF_TOOL {

inline Finding unreadable(const KPF_READER::RecordingError& error,
                          std::optional<std::uint32_t> record = std::nullopt) {
  // The error's text begins with file and offset, which a finding tells by itself.
  const std::string text = error.what();
  return {Problem::kUnreadable, error.file(), record, error.offset(),
          text.substr(text.find(": ", error.file().size()) + 2)};
}

}  // namespace KPF_TOOL

#endif

#include "tools/kpf/checks/survey.h"

#include "tools/kpf/checks/check_files.h"

namespace KPF_TOOL {

Survey::Survey(const std::string& file) : recording(file, KPF_READER::Access::kSparse) {
  for (std::uint32_t n = 0; n < recording.recordCount(); ++n) {
    const KPF_READER::FrameRecord record = recording.record(n);
    if (record.placeholder) {
      ++placeholders;
      continue;
    }
    if (!first) first = record;
    last = record;
  }
  for (const KPF_READER::DivFile& div : recording.divFiles()) bytes += div.size;
  checkCompleteness(recording, findings);
}

double Survey::duration() const { return recording.recordCount() / header().frameRate; }

double Survey::bytesPerSecond() const {
  return static_cast<double>(header().recordSize()) * header().frameRate;
}

}  // namespace KPF_TOOL

#include "tools/kpf/checks/survey.h"

#include <algorithm>

#include "tools/kpf/checks/check_files.h"
#include "tools/kpf/checks/unreadable.h"

namespace KPF_TOOL {

Survey::Survey(const std::string& file) : recording(file, KPF_READER::Access::kSparse) {
  Records records(recording, KPF_READER::Access::kSparse);
  for (const KPF_READER::DivFile& div : recording.divFiles()) {
    bytes += div.size;
    const std::uint32_t begin = (div.number - 1) * header().framesPerDivFile;
    for (std::uint32_t n = 0; n < div.records;) n += look(records, begin + n);
  }
  checkCompleteness(recording, findings);
}

/// @return how many records were seen at once.
std::uint32_t Survey::look(Records& records, std::uint32_t place) {
  try {
    const Record record = records.readHeader(place);
    if (record.placeholder) {
      const std::uint32_t count = std::max(1U, records.unstoredFrom(record));
      placeholders += count;
      return count;
    }
    if (!first) first = record;
    last = record;
  } catch (const KPF_READER::RecordingError& error) {
    readable = false;
    findings.add(unreadable(error, place));
  }
  return 1;
}

double Survey::duration() const { return recording.recordCount() / header().frameRate; }

double Survey::bytesPerSecond() const {
  return static_cast<double>(header().recordSize()) * header().frameRate;
}

}  // namespace KPF_TOOL

#include "tools/kpf/checks/survey.h"

#include "tools/kpf/checks/check_files.h"

namespace KPF_TOOL {

Survey::Survey(const std::string& file) : recording(file, KPF_READER::Access::kSparse) {
  Records records(recording, KPF_READER::Access::kSparse);
  for (const KPF_READER::DivFile& div : recording.divFiles()) {
    bytes += div.size;
    const std::uint32_t begin = (div.number - 1) * header().framesPerDivFile;
    for (std::uint32_t n = 0; n < div.records; ++n) look(records, begin + n);
  }
  checkCompleteness(recording, findings);
}

void Survey::look(Records& records, std::uint32_t place) {
  try {
    const Record record = records.readHeader(place);
    if (record.placeholder) {
      ++placeholders;
      return;
    }
    if (!first) first = record;
    last = record;
  } catch (const KPF_READER::RecordingError& error) {
    readable = false;
    // Its text begins with file and offset, which a finding tells by itself.
    const std::string text = error.what();
    findings.add({Problem::kUnreadable, error.file(), place, error.offset(),
                  text.substr(text.find(": ", error.file().size()) + 2)});
  }
}

double Survey::duration() const { return recording.recordCount() / header().frameRate; }

double Survey::bytesPerSecond() const {
  return static_cast<double>(header().recordSize()) * header().frameRate;
}

}  // namespace KPF_TOOL

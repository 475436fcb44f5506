#include "tools/kpf/checks/old_files.h"

#include <fmt/format.h>

#include "kpf_reader.h"
#include "tools/kpf/records/data_file.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint32_t kMicrosecondsASecond = 1000000;

/// All files of a recording but the last hold the same number of frames, so that the number of each
/// one's first frame is a multiple.
bool beginsAFile(const Record& first, std::uint32_t number) {
  return number > 1 && first.sequenceNumber != 0 && first.sequenceNumber % (number - 1) == 0 &&
         first.microseconds < kMicrosecondsASecond;
}

std::string timeOf(const Record& record) { return timeText(record.seconds, record.microseconds); }

}  // namespace

std::optional<std::string> olderThan(const Moment& begin, std::uint32_t number,
                                     const Record& first) {
  if (first.placeholder || !beginsAFile(first, number)) return std::nullopt;
  if (Moment(first.seconds, first.microseconds) >= begin) return std::nullopt;
  return fmt::format(
      "left by an older recording of this name: its frame {} is of {}, before the first one",
      first.sequenceNumber, timeOf(first));
}

std::string leftoverText(const std::string& path, std::uint32_t number) {
  try {
    const std::optional<Record> first = firstHeaderOf(path);
    if (first && beginsAFile(*first, number)) {
      return fmt::format("left by another recording of this name: it begins with frame {}, of {}",
                         first->sequenceNumber, timeOf(*first));
    }
  } catch (const KPF_READER::RecordingError&) {
    // Unreadable or not, it does not belong to the recording.
  }
  return "does not belong to the recording";
}

}  // namespace KPF_TOOL

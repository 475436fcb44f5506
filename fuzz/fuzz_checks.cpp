// What info and verify look at, of any bytes: findings that can be told, and two counts that agree.
//
// Input: as that of the reader, but for the last file, which is one of checksums.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_input.h"
#include "fuzz/recording_files.h"
#include "fuzz/scratch.h"
#include "kpf_reader.h"
#include "tools/kpf/checks/check_files.h"
#include "tools/kpf/checks/check_records.h"
#include "tools/kpf/checks/survey.h"
#include "tools/kpf/records/checksum_file.h"

namespace {

using FUZZ::require;
using KPF_READER::Recording;
using namespace KPF_TOOL;

constexpr std::uint32_t kRecordsTried = 100000;  // of records without pixels there may be millions

void checkList(const FindingList& list, const Recording& recording) {
  require(list.kept().size() <= list.count(), "all that is kept is counted");
  for (const Finding& finding : list.kept()) {
    require(!finding.text.empty() && !finding.file.empty(), "a finding says what and where");
    require(std::string(nameOf(finding.problem)) != "unknown", "a finding has a word");
    // The file of checksums may name any.
    require(!finding.record || finding.problem == Problem::kChecksum ||
                *finding.record < recording.header().frameCount,
            "a record that a finding names was announced");
  }
}

void check(const std::string& header) {
  const Recording recording(header);
  if (recording.recordCount() > kRecordsTried) return;
  Findings findings;
  checkHeader(recording, findings);
  checkCompleteness(recording, findings);
  checkStrayFiles(recording, findings);
  std::uint64_t told = 0;
  const std::uint32_t placeholders = checkRecords(
      recording,
      [&told](std::uint64_t bytes) {
        require(bytes >= told, "progress goes on");
        told = bytes;
      },
      findings);
  checkList(findings.problems(), recording);
  checkList(findings.notes(), recording);
  const Survey survey(header);
  // Records of an older recording are not looked at one by one.
  require(placeholders <= survey.placeholders, "no placeholder is seen twice");
  require(survey.placeholders <= recording.recordCount(), "a placeholder is a record");
  require(told == survey.bytes, "progress ends with all bytes");
  require(!survey.complete() || recording.recordCount() == recording.header().frameCount,
          "what is complete has all frames");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FUZZ::Scratch scratch;
  if (size == 0) return 0;
  const FUZZ::Choices choices(data[0]);
  scratch.clear();
  const std::string header = scratch / "rec.kpf";
  FUZZ::writeRecording(scratch, choices, data + 1, size - 1, checksumFileName(header));
  try {
    check(header);
  } catch (const KPF_READER::RecordingError& error) {
    require(!error.file().empty(), "an error names its file");
  }
  return 0;
}

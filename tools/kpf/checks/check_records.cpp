#include "tools/kpf/checks/check_records.h"

#include <fmt/format.h>

#include <optional>
#include <string>

#include "format/kpf_layout.h"
#include "tools/kpf/checks/old_files.h"
#include "tools/kpf/checks/record_checker.h"
#include "tools/kpf/checks/unreadable.h"
#include "tools/kpf/records/checksum.h"
#include "tools/kpf/records/checksum_file.h"
#include "tools/kpf/records/records.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
using KPF_READER::DivFile;
using KPF_READER::Recording;
namespace {

/// Goes through the data files, and hands on the records that belong to the recording.
class RecordsCheck {
 public:
  RecordsCheck(const Recording& recording, const BytesRead& bytesRead, Findings& findings)
      : recording_(recording),
        records_(recording, KPF_READER::Access::kSequential),
        bytesRead_(bytesRead),
        checksums_(recording.path(), recording.header().identifier),
        checker_(recording.header(), findings),
        findings_(findings) {}

  std::uint32_t run() {
    for (const DivFile& file : recording_.divFiles()) {
      if (!isOld(file)) checkFile(file);
      done_ += file.size;
      bytesRead_(done_);
    }
    checker_.finish();
    checkChecksums();
    checkIdentity();
    return checker_.placeholders();
  }

 private:
  std::uint32_t firstOf(const DivFile& file) const {
    return (file.number - 1) * recording_.header().framesPerDivFile;
  }

  void checkFile(const DivFile& file) {
    const std::uint32_t first = firstOf(file);
    for (std::uint32_t n = 0; n < file.records;) n += checkRecord(first + n);
  }

  /// @return how many records were checked: where the disk holds nothing, that is known of many at
  /// once.
  std::uint32_t checkRecord(std::uint32_t place) {
    try {
      const Record record = records_.read(place);
      bytesRead_(done_ + record.offset);
      checkChecksum(record);
      const std::uint32_t unstored = mayPassOver(record) ? records_.unstoredFrom(record) : 0;
      if (unstored > 1) {
        checker_.addPlaceholders(record, unstored);
        return unstored;
      }
      checker_.check(record);
      if (!begin_ && !record.placeholder) begin_ = Moment{record.seconds, record.microseconds};
    } catch (const KPF_READER::RecordingError& error) {
      findings_.add(unreadable(error, place));
    }
    return 1;
  }

  /// Each record that has a checksum is looked at.
  bool mayPassOver(const Record& record) const {
    return record.placeholder && checksums_.state() != ChecksumReader::State::kUsable;
  }

  void checkChecksum(const Record& record) {
    const auto kept = checksums_.of(record.place);
    if (!kept && withoutChecksum_++ == 0) firstWithout_ = record.place;
    if (!kept || *kept == checksumOf(record.bytes)) return;
    findings_.add({Problem::kChecksum, record.file->path, record.place, record.offset,
                   "not the record whose checksum was kept"});
  }

  /// What is to be said of the file of checksums as a whole.
  void checkChecksums() {
    checksums_.finish();
    const auto about = [this](const std::string& text, std::optional<std::uint32_t> record = {}) {
      return Finding{Problem::kChecksum, checksums_.path(), record, 0, text};
    };
    if (checksums_.state() == ChecksumReader::State::kForeign) {
      findings_.addNote(about("the checksums are those of another recording of this name"));
    } else if (checksums_.state() == ChecksumReader::State::kUnreadable) {
      findings_.add(about("not a file of checksums"));
    }
    if (checksums_.badLine() != 0) {
      findings_.add(about(fmt::format("line {} is no checksum", checksums_.badLine())));
    }
    if (checksums_.state() == ChecksumReader::State::kUsable && withoutChecksum_ != 0) {
      findings_.addNote(
          about("no checksum was kept of " + countText(withoutChecksum_, "record"), firstWithout_));
    }
    if (checksums_.passedOver() == 0) return;
    findings_.add(about(countText(checksums_.passedOver(), "record") +
                            " of which the checksum was kept cannot be read",
                        checksums_.firstPassedOver()));
  }

  /// Data files that are opened one after the other may be of two recordings.
  void checkIdentity() {
    if (!isReplaced(recording_)) return;
    findings_.add({Problem::kHeader, recording_.path(), std::nullopt,
                   KPF_FORMAT::HEADER::kIdentifier.offset,
                   "another recording has taken its place meanwhile: verify that one"});
  }

  /// A recording that was begun again under the same name and cut short has data files of the older
  /// one behind its own.
  bool isOld(const DivFile& file) {
    if (!begin_ || file.records == 0) return false;
    try {
      const auto older = olderThan(*begin_, file.number, records_.readHeader(firstOf(file)));
      if (!older) return false;
      findings_.add({Problem::kOldFile, file.path, firstOf(file), 0, *older});
      return true;
    } catch (const KPF_READER::RecordingError&) {
      return false;  // which is told when the records are checked
    }
  }

  const Recording& recording_;
  Records records_;
  const BytesRead& bytesRead_;
  ChecksumReader checksums_;
  RecordChecker checker_;
  Findings& findings_;
  std::optional<Moment> begin_;  // of the recording
  std::uint64_t done_ = 0;       // bytes of the files that are behind
  std::uint64_t withoutChecksum_ = 0;
  std::uint32_t firstWithout_ = 0;  // of those
};

}  // namespace

std::uint32_t checkRecords(const Recording& recording, const BytesRead& bytesRead,
                           Findings& findings) {
  return RecordsCheck(recording, bytesRead, findings).run();
}

}  // namespace KPF_TOOL

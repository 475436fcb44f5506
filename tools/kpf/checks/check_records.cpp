#include "tools/kpf/checks/check_records.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "format/kpf_layout.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
using KPF_READER::DivFile;
using KPF_READER::FrameRecord;
using KPF_READER::Header;
using KPF_READER::Recording;
namespace layout = KPF_FORMAT::FRAME_HEADER;
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

/// Reads a file from start to end, ahead of whoever then looks at it through memory: there a sector
/// that the disk cannot read would end the process, here it is an error.
class ReadAhead {
 public:
  explicit ReadAhead(const std::string& path) : block_(kBlock) {
    file_.rdbuf()->pubsetbuf(nullptr, 0);
    file_.open(path, std::ios::binary);
  }

  /// @return false when the file cannot be read up to `end`.
  bool advanceTo(std::uint64_t end) {
    while (position_ < end && file_) {
      file_.read(block_.data(), static_cast<std::streamsize>(block_.size()));
      position_ += static_cast<std::uint64_t>(file_.gcount());
    }
    return position_ >= end;
  }

  std::uint64_t position() const { return position_; }

 private:
  std::vector<char> block_;
  std::ifstream file_;
  std::uint64_t position_ = 0;
};

/// Looks at one record after the other.
class RecordChecker {
 public:
  RecordChecker(const Recording& recording, Findings& findings)
      : header_(recording.header()), findings_(findings) {}

  void check(const FrameRecord& record, const std::string& file) {
    if (record.placeholder) {
      ++placeholders_;
      return;
    }
    const auto add = [&](Problem problem, std::uint64_t offset, const std::string& text) {
      findings_.add({problem, file, record.place, record.offset + offset, text});
    };
    if (record.sequenceNumber != record.place) {
      add(Problem::kSequence, layout::kSequenceNumber.offset,
          fmt::format("the record says number {}", record.sequenceNumber));
    }
    const std::string time = timeProblem(record);
    if (!time.empty()) add(Problem::kTime, layout::kSeconds.offset, time);
    if (const auto at = KPF_READER::findByteBetweenRows(header_, record.pixels)) {
      add(Problem::kBetweenRows, layout::kSize + *at, "not zero, where no pixel is stored");
    }
    before_ = {record.place, {record.seconds, record.microseconds}};
    hasBefore_ = true;
  }

  std::uint32_t placeholders() const { return placeholders_; }

 private:
  std::string timeProblem(const FrameRecord& record) const {
    // Without a frame rate, times mean nothing.
    if (header_.frameRate <= 0) return "";
    if (record.microseconds > 999999) {
      return fmt::format("{} microseconds are more than a second", record.microseconds);
    }
    if (!hasBefore_) return "";
    if (std::pair(record.seconds, record.microseconds) < before_.second) {
      return "the time is earlier than that of record " + std::to_string(before_.first);
    }
    const double step = static_cast<double>(record.seconds) -
                        static_cast<double>(before_.second.first) +
                        (static_cast<double>(record.microseconds) - before_.second.second) / 1e6;
    const double expected = (record.place - before_.first) / header_.frameRate;
    if (std::abs(step - expected) <= tolerance(record)) return "";
    return fmt::format("{:.6f} s after record {}, where {:.6f} s were due", step, before_.first,
                       expected);
  }

  /// Half a frame, the microseconds that were cut off, and what a double cannot tell apart.
  double tolerance(const FrameRecord& record) const {
    const double grain =
        std::abs(static_cast<double>(record.seconds)) * std::numeric_limits<double>::epsilon();
    return 0.5 / header_.frameRate + 2e-6 + 2 * grain;
  }

  const Header& header_;
  Findings& findings_;
  std::pair<std::uint32_t, std::pair<std::int64_t, std::uint32_t>> before_;  // place and time
  bool hasBefore_ = false;
  std::uint32_t placeholders_ = 0;
};

/// Checks the records of one data file.
void checkFile(const Recording& recording, const DivFile& file, RecordChecker& checker,
               const std::function<void(std::uint64_t)>& progress, Findings& findings) {
  const std::uint64_t recordSize = recording.header().recordSize();
  ReadAhead ahead(file.path);
  for (std::uint32_t i = 0; i < file.records; ++i) {
    if (!ahead.advanceTo((i + 1) * recordSize)) {
      const std::uint32_t before = (file.number - 1) * recording.header().framesPerDivFile;
      findings.add({Problem::kUnreadable, file.path, before + i, ahead.position(),
                    "the file cannot be read any further"});
      return;
    }
    checker.check(recording.record(file.firstRecord + i), file.path);
    progress(ahead.position());
  }
}

}  // namespace

std::uint32_t checkRecords(const Recording& recording, const BytesRead& bytesRead,
                           Findings& findings) {
  RecordChecker checker(recording, findings);
  std::uint64_t done = 0;
  for (const DivFile& file : recording.divFiles()) {
    const auto progress = [&](std::uint64_t position) { bytesRead(done + position); };
    try {
      checkFile(recording, file, checker, progress, findings);
    } catch (const KPF_READER::RecordingError& error) {
      findings.add(
          {Problem::kUnreadable, error.file(), std::nullopt, error.offset(), error.what()});
    }
    done += file.size;
  }
  return checker.placeholders();
}

}  // namespace KPF_TOOL

#include "tools/kpf/checks/record_checker.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

#include "format/kpf_layout.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace layout = KPF_FORMAT::FRAME_HEADER;
namespace {

Finding about(const Record& record, Problem problem, std::uint64_t offset,
              const std::string& text) {
  return {problem, record.file->path, record.place, record.offset + offset, text};
}

}  // namespace

void RecordChecker::check(const Record& record) {
  if (record.placeholder) {
    addPlaceholders(record, 1);
    return;
  }
  endPlaceholders();
  checkNumber(record);
  checkTime(record);
  if (const auto at = KPF_READER::findByteBetweenRows(header_, record.pixels)) {
    findings_.addNote(about(record, Problem::kBetweenRows, layout::kSize + *at,
                            "not zero, where no pixel is stored"));
  }
}

void RecordChecker::addPlaceholders(const Record& first, std::uint32_t count) {
  placeholders_ += count;
  if (lost_ && lost_->end == first.place) {
    lost_->end += count;
    return;
  }
  endPlaceholders();
  lost_ = Run{about(first, Problem::kPlaceholders, 0, ""), first.place + count, 0};
}

void RecordChecker::finish() {
  endPlaceholders();
  endNumbers();
}

void RecordChecker::endPlaceholders() {
  if (!lost_) return;
  const std::uint32_t count = lost_->end - *lost_->note.record;
  lost_->note.text =
      count == 1 ? "a placeholder"
                 : fmt::format("{} placeholders, the last is record {}", count, lost_->end - 1);
  findings_.addNote(lost_->note);
  lost_.reset();
}

/// Numbers that keep their distance from the places belong together, placeholders between them or
/// not.
void RecordChecker::checkNumber(const Record& record) {
  const bool own = record.sequenceNumber != record.place;
  if (own && numbered_ &&
      record.sequenceNumber - numbered_->number == record.place - *numbered_->note.record) {
    numbered_->end = record.place + 1;
    return;
  }
  endNumbers();
  if (!own) return;
  numbered_ = Run{about(record, Problem::kSequence, layout::kSequenceNumber.offset, ""),
                  record.place + 1, record.sequenceNumber};
}

void RecordChecker::endNumbers() {
  if (!numbered_) return;
  const std::uint32_t first = *numbered_->note.record;
  const std::uint32_t number = numbered_->number;
  const std::uint32_t last = numbered_->end - 1;
  numbered_->note.text = first == last
                             ? fmt::format("the record says number {}", number)
                             : fmt::format("the records up to {} say numbers from {} to {}", last,
                                           number, number + (last - first));
  findings_.addNote(numbered_->note);
  numbered_.reset();
}

void RecordChecker::checkTime(const Record& record) {
  const std::string odd = oddTime(record);
  if (!odd.empty()) {
    findings_.addNote(about(record, Problem::kTime, layout::kSeconds.offset, odd));
  }
  before_ = {record.place, {record.seconds, record.microseconds}};
}

std::string RecordChecker::oddTime(const Record& record) const {
  // Without a frame rate, times mean nothing.
  if (!header_.hasFrameRate()) return "";
  if (record.microseconds > 999999) {
    return fmt::format("{} microseconds are more than a second", record.microseconds);
  }
  if (!before_) return "";
  const auto& [place, time] = *before_;
  if (Time(record.seconds, record.microseconds) < time) {
    return fmt::format("the time is earlier than that of record {}", place);
  }
  const double step = static_cast<double>(record.seconds) - static_cast<double>(time.first) +
                      (static_cast<double>(record.microseconds) - time.second) / 1e6;
  const double expected = (record.place - place) / header_.frameRate;
  if (std::abs(step - expected) <= tolerance(record)) return "";
  return fmt::format("{} after record {}, where {} were due", secondsText(step), place,
                     secondsText(expected));
}

/// Half a frame, the microseconds that were cut off, and what a double cannot tell apart.
double RecordChecker::tolerance(const Record& record) const {
  const double grain =
      std::abs(static_cast<double>(record.seconds)) * std::numeric_limits<double>::epsilon();
  return 0.5 / header_.frameRate + 2e-6 + 2 * grain;
}

}  // namespace KPF_TOOL

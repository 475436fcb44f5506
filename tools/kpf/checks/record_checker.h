// What can be said of a record by itself, and beside the one before it.
#ifndef KPF_RECORD_CHECKER_H
#define KPF_RECORD_CHECKER_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "kpf_reader.h"
#include "tools/kpf/checks/findings.h"
#include "tools/kpf/records/records.h"

namespace KPF_TOOL {

/**
 * Takes the records in the order of their places.
 *
 * Callers may bring records that they packed beforehand, so whatever stands in one is a note. Notes
 * that say the same of neighbours are one: a run of placeholders, a run of numbers of one's own.
 */
class RecordChecker {
 public:
  RecordChecker(const KPF_READER::Header& header, Findings& findings)
      : header_(header), findings_(findings) {}

  void check(const Record& record);
  /// `count` records from `first` on that are placeholders, none of them looked at.
  void addPlaceholders(const Record& first, std::uint32_t count);
  /// Adds what is still collected.
  void finish();

  std::uint32_t placeholders() const { return placeholders_; }

 private:
  using Time = std::pair<std::int64_t, std::uint32_t>;  // seconds, microseconds

  /// Neighbours that one note is about.
  struct Run {
    Finding note;
    std::uint32_t end;     // the place behind the last one
    std::uint32_t number;  // what the first one says, where that is what the note is about
  };

  void checkNumber(const Record& record);
  void checkTime(const Record& record);
  std::string oddTime(const Record& record) const;
  double tolerance(const Record& record) const;
  void endPlaceholders();
  void endNumbers();

  const KPF_READER::Header& header_;
  Findings& findings_;
  std::optional<Run> lost_;
  std::optional<Run> numbered_;
  std::optional<std::pair<std::uint32_t, Time>> before_;  // place and time
  std::uint32_t placeholders_ = 0;
};

}  // namespace KPF_TOOL

#endif

// What a recording is, learned without reading its pixels.
#ifndef KPF_SURVEY_H
#define KPF_SURVEY_H

#include <cstdint>
#include <optional>
#include <string>

#include "kpf_reader.h"
#include "tools/kpf/checks/findings.h"
#include "tools/kpf/records/records.h"

namespace KPF_TOOL {

/// An open recording and what its files and frame headers tell. A record's header lies far from the
/// next one's, so the pixels between them are never touched.
struct Survey {
  /// @throws KPF_READER::RecordingError.
  explicit Survey(const std::string& file);

  const KPF_READER::Header& header() const { return recording.header(); }
  bool complete() const {
    return findings.problems().count() == 0 && findings.notes().count() == 0;
  }
  /// Without a rate neither duration nor bytesPerSecond mean anything.
  bool hasRate() const { return header().hasFrameRate(); }
  /// Seconds of the records that are there.
  double duration() const;
  double bytesPerSecond() const;

  KPF_READER::Recording recording;
  std::uint64_t bytes = 0;  // of all data files
  std::uint32_t placeholders = 0;
  std::optional<Record> first;  // placeholders left out: they have no time
  std::optional<Record> last;
  bool readable = true;  // the header of every record
  Findings findings;     // about completeness

 private:
  std::uint32_t look(Records& records, std::uint32_t place);
};

}  // namespace KPF_TOOL

#endif

// Records that may be missing or unreadable, and what is to be told of those.
#ifndef KPF_RECORD_WALK_H
#define KPF_RECORD_WALK_H

#include <cstdint>
#include <optional>
#include <string>

#include "kpf_reader.h"
#include "tools/kpf/records/records.h"

namespace KPF_TOOL {

/// Gives record after record of a recording that nobody vouches for, and keeps count of what it
/// could not give.
class RecordWalk {
 public:
  /// @param recording must live as long.
  explicit RecordWalk(const KPF_READER::Recording& recording)
      : recording_(recording),
        records_(recording, KPF_READER::Access::kSequential),
        places_(records_.places()) {}

  /// See Records::places.
  std::uint32_t places() const { return places_; }

  /// Nothing where a data file or its end is missing, or where the disk fails. Valid until the next
  /// one is asked for.
  std::optional<Record> at(std::uint32_t place);

  /// What could not be given so far, in words for the user, or may have been of another recording;
  /// empty when all was as it should be. Frames that were recorded as lost are no such thing.
  std::string flaw() const;

  /// The same of an end that is not where the recording announces it.
  std::string wrongEnd() const;

 private:
  const KPF_READER::Recording& recording_;
  Records records_;
  std::uint32_t places_;
  std::uint64_t missing_ = 0;
  std::uint32_t firstMissing_ = 0;
  std::uint64_t unreadable_ = 0;
  std::string unreadableText_;  // of the first
};

}  // namespace KPF_TOOL

#endif

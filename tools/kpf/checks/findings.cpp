#include "tools/kpf/checks/findings.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kKeptOfAKind = 100;

}  // namespace

const char* nameOf(Problem problem) {
  switch (problem) {
    case Problem::kHeader:
      return "header";
    case Problem::kFramesPerFile:
      return "frames-per-file";
    case Problem::kMissingFile:
      return "missing-file";
    case Problem::kShortFile:
      return "short-file";
    case Problem::kLongFile:
      return "long-file";
    case Problem::kStrayFile:
      return "stray-file";
    case Problem::kOldFile:
      return "old-file";
    case Problem::kIncomplete:
      return "incomplete";
    case Problem::kStatusFile:
      return "status-file";
    case Problem::kUnreadable:
      return "unreadable";
    case Problem::kSequence:
      return "sequence";
    case Problem::kTime:
      return "time";
    case Problem::kBetweenRows:
      return "between-rows";
    case Problem::kPlaceholders:
      return "placeholders";
    case Problem::kChecksum:
      return "checksum";
  }
  return "unknown";
}

void FindingList::add(const Finding& finding) {
  ++count_;
  if (++countOf_[finding.problem] <= kKeptOfAKind) kept_.push_back(finding);
}

void Findings::add(const Finding& finding) {
  problems_.add(finding);
  if (!finding.record) return;
  if (!firstDamage_ || *finding.record < *firstDamage_->record) firstDamage_ = finding;
}

}  // namespace KPF_TOOL

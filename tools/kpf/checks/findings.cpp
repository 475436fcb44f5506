#include "tools/kpf/checks/findings.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kKeptOfAKind = 100;

// A time may be odd in a record that is sound.
bool damages(const Finding& finding) {
  return finding.record.has_value() && finding.problem != Problem::kTime;
}

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
  }
  return "unknown";
}

void Findings::add(const Finding& finding) {
  ++count_;
  if (++countOf_[finding.problem] <= kKeptOfAKind) kept_.push_back(finding);
  if (!damages(finding)) return;
  if (!firstDamage_ || *finding.record < *firstDamage_->record) firstDamage_ = finding;
}

}  // namespace KPF_TOOL

#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

const char* nameOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kDone:
      return "done";
    case Outcome::kProblemsFound:
      return "problems-found";
    case Outcome::kCutShort:
      return "cut-short";
    case Outcome::kWriteFailed:
      return "write-failed";
    case Outcome::kFailed:
      return "failed";
    case Outcome::kWrongUsage:
      return "wrong-usage";
    case Outcome::kUnreadableInput:
      return "unreadable-input";
    case Outcome::kRefused:
      return "refused";
  }
  return "failed";
}

// No default label: the compiler names the enumerator that a new end has forgotten here.
int exitCodeOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kDone:
      return 0;
    case Outcome::kProblemsFound:
    case Outcome::kCutShort:
    case Outcome::kWriteFailed:
    case Outcome::kFailed:
      return 1;
    case Outcome::kWrongUsage:
    case Outcome::kUnreadableInput:
    case Outcome::kRefused:
      return 2;
  }
  return 1;
}

}  // namespace KPF_TOOL

// How a command that cannot go on tells why.
#ifndef KPF_TOOL_ERROR_H
#define KPF_TOOL_ERROR_H

#include <stdexcept>
#include <string>

#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

/// What happened, what to do next, and how the command ends by it.
class ToolError : public std::runtime_error {
 public:
  /// @param what one line without a full stop, names in it already escaped.
  /// @param advice a sentence that begins with a verb.
  ToolError(Outcome outcome, const std::string& what, const std::string& advice)
      : std::runtime_error(what), advice_(advice), outcome_(outcome) {}

  const std::string& advice() const { return advice_; }
  Outcome outcome() const { return outcome_; }

 private:
  std::string advice_;
  Outcome outcome_;
};

}  // namespace KPF_TOOL

#endif

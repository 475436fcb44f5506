// How a command that cannot go on tells why.
#ifndef TOOL_ERROR_H
#define TOOL_ERROR_H

#include <stdexcept>
#include <string>

namespace KPF_TOOL {

constexpr int kDone = 0;
constexpr int kProblems = 1;           // the recording has problems, or the job was cut short
constexpr int kWrongOrUnreadable = 2;  // wrong usage, or input that cannot be read

/// What happened, what to do next, and the exit code that says so.
class ToolError : public std::runtime_error {
 public:
  ToolError(int exitCode, const std::string& what, const std::string& advice)
      : std::runtime_error(what), advice_(advice), exitCode_(exitCode) {}

  const std::string& advice() const { return advice_; }
  int exitCode() const { return exitCode_; }

 private:
  std::string advice_;
  int exitCode_;
};

}  // namespace KPF_TOOL

#endif

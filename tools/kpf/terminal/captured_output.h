// The library's log lines, kept off the results.
#ifndef KPF_CAPTURED_OUTPUT_H
#define KPF_CAPTURED_OUTPUT_H

#include <cstdio>

namespace KPF_TOOL {

/**
 * Keeps the library's log lines off standard output, which is for results.
 *
 * The library writes each line to standard output; while this lives, that is a file in memory. Any
 * line means trouble, which is how a disk that fails in the middle of a recording is noticed.
 */
class CapturedOutput {
 public:
  /// @throws ToolError where the system gives no such file.
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  /// Whether anything was written so far.
  bool any() const;
  /// Gives standard output back and tells on standard error what was written, as the library's: its
  /// first lines, with what is no printable text escaped.
  void release();
  /// Forgets what was written, where it turned out to be no trouble.
  void drop();

 private:
  void pass();

  std::FILE* captured_;
  int output_;  // descriptor of the real standard output, -1 once it is given back
};

}  // namespace KPF_TOOL

#endif

// What the user is told of a recording that was made.
#ifndef KPF_RECORD_REPORT_H
#define KPF_RECORD_REPORT_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

/// How a recording went.
struct RecordResult {
  std::string header;              // its header file
  std::uint64_t frames = 0;        // placeholders among them
  std::uint64_t placeholders = 0;  // damaged ones among them
  std::uint64_t damaged = 0;
  std::uint64_t onDisk = 0;              // frames that the files hold
  bool written = true;                   // the library and the system took everything
  std::string obstacle;                  // what is in the way where they did not
  std::string trouble;                   // what is wrong with the input, see FrameSource::flaw
  std::chrono::nanoseconds within999{};  // what 99.9 % of the calls took at most
  std::chrono::nanoseconds longest{};    // and all of them
  std::optional<std::uint64_t> late;     // frames, where the source sets the pace
};

/// How a command ends that made it.
Outcome outcomeOf(const RecordResult& result);

/// "99.9 % of the calls took up to 0.21 ms, the slowest 1.30 ms; 3 frames came late".
std::string paceText(const RecordResult& result);

/// Tells of one recording: remarks at once, the result in the end, for people or for programs.
class RecordReport {
 public:
  RecordReport(bool quiet, bool json) : quiet_(quiet), json_(json) {}

  /// A line that is worth knowing and no failure; an empty one is none.
  void remark(const std::string& line);
  const std::vector<std::string>& remarks() const { return remarks_; }

  /// Prints the result. @return how the command ends.
  Outcome conclude(const RecordResult& result) const;

 private:
  void print(const RecordResult& result, Outcome outcome) const;
  void printDocument(const RecordResult& result, Outcome outcome) const;

  bool quiet_;
  bool json_;
  std::vector<std::string> remarks_;
};

}  // namespace KPF_TOOL

#endif

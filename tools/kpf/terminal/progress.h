// A line that tells how far a long command has come.
#ifndef KPF_PROGRESS_H
#define KPF_PROGRESS_H

#include <cstdint>
#include <string>

#include "tools/kpf/terminal/status_line.h"

namespace KPF_TOOL {

/// Count, rate and, where the total is known, the time that remains: "50 of 200 frames, 25
/// frames/s, 0:06 left".
/// @param total `unit`s expected; a smaller one than `done` is no longer believed.
std::string progressText(std::uint64_t done, std::uint64_t total, const std::string& unit,
                         double seconds);

/// Shows it on a StatusLine.
class Progress {
 public:
  /// @param total `unit`s expected, or 0 when nobody knows.
  Progress(bool quiet, std::uint64_t total, const char* unit = "frames");

  /// To be called often: it writes ten times a second at most.
  void show(std::uint64_t done);

 private:
  StatusLine line_;
  std::uint64_t total_;
  const char* unit_;
};

}  // namespace KPF_TOOL

#endif

// One line on a terminal that is written again and again.
#ifndef KPF_STATUS_LINE_H
#define KPF_STATUS_LINE_H

#include <chrono>
#include <string>

namespace KPF_TOOL {

/// On standard error where that is a terminal, and wiped at the end: scripts and files never see
/// it.
class StatusLine {
 public:
  explicit StatusLine(bool quiet);
  ~StatusLine();
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// Whether it is time for the line to change: ten times a second at most, and never where nobody
  /// looks.
  bool isDue() const;
  void show(const std::string& text);
  /// Seconds since it was made.
  double seconds() const;

 private:
  using Clock = std::chrono::steady_clock;

  bool visible_;
  Clock::time_point begin_;
  Clock::time_point shown_;  // when the line was last written
};

}  // namespace KPF_TOOL

#endif

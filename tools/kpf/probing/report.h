// What was found, for people and for programs.
#ifndef KPF_REPORT_H
#define KPF_REPORT_H

#include <cstdint>
#include <optional>
#include <string>

#include "tools/kpf/probing/measurement.h"
#include "tools/kpf/terminal/json.h"

namespace KPF_TOOL {

/// All that a probe found. What was not asked for is not there.
struct Report {
  std::string file;
  double rate = 0;
  std::uint64_t frames = 0;
  std::optional<double> scale;  // millimetres a pixel
  std::optional<Measurement> box;
  std::optional<MapResult> map;
  std::string mapFile;
};

/// A few lines on standard output.
void printReport(const Report& report);

/// The same, with every digit. Lost frames are named by their numbers from the range's first one.
Json jsonOf(const Report& report);

}  // namespace KPF_TOOL

#endif

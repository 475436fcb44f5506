#include "bench/stream/sustained/report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace BENCH {
namespace {

void print(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);  // a table of minutes is read while it grows
}

double milliseconds(double seconds) { return seconds * 1e3; }

}  // namespace

double percentile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  const auto last = static_cast<double>(values.size() - 1);
  const auto nth = values.begin() + static_cast<std::ptrdiff_t>(share * last);
  std::nth_element(values.begin(), nth, values.end());
  return *nth;
}

void printUnpacedHead() {
  print("\nAs fast as it goes\n");
  print(fmt::format("{:<12}{:>5}{:>10}", "writer", "turn", "MB/s"));
}

void printUnpaced(const std::string& writer, unsigned turn, const Course& course,
                  const Plan& plan) {
  print(fmt::format("{:<12}{:>5}{:>10.0f}", writer, turn, plan.bytes() / course.seconds / 1e6));
}

void printPacedHead(const Plan& plan) {
  const FrameSize size = plan.material->size;
  print(fmt::format(
      "\n{} of {} x {} at {} bits, together {:.0f} MB/s: a frame every {:.1f} ms each\n",
      plan.streams == 1 ? "One stream" : fmt::format("{} streams", plan.streams), size.width,
      size.height, plan.material->bitsPerPixel, plan.bytes() / plan.frames / plan.interval / 1e6,
      milliseconds(plan.frameTime())));
  print(fmt::format("{:<12}{:>5}{:>9}{:>9}{:>9}{:>9}{:>16}{:>11}", "writer", "turn", "p50 ms",
                    "p99", "p99.9", "max", "late frames", "latest ms"));
}

void printPaced(const std::string& writer, unsigned turn, const Course& course, const Plan& plan) {
  const auto late = std::count_if(course.late.begin(), course.late.end(),
                                  [&](double by) { return by > plan.frameTime(); });
  print(fmt::format(
      "{:<12}{:>5}{:>9.2f}{:>9.2f}{:>9.2f}{:>9.2f}{:>16}{:>11.1f}", writer, turn,
      milliseconds(percentile(course.calls, 0.5)), milliseconds(percentile(course.calls, 0.99)),
      milliseconds(percentile(course.calls, 0.999)), milliseconds(percentile(course.calls, 1)),
      fmt::format("{} of {}", late, plan.frames), milliseconds(percentile(course.late, 1))));
}

}  // namespace BENCH

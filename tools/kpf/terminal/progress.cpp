#include "tools/kpf/terminal/progress.h"

#include <fmt/format.h>

namespace KPF_TOOL {
namespace {

std::string clockText(double seconds) {
  const auto whole = static_cast<std::uint64_t>(seconds);
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

std::string progressText(std::uint64_t done, std::uint64_t total, const std::string& unit,
                         double seconds) {
  const double rate = static_cast<double>(done) / seconds;
  const std::string speed = fmt::format("{:.0f} {}/s", rate, unit);
  if (total < done) return fmt::format("{} {}, {}", done, unit, speed);
  std::string text = fmt::format("{} of {} {}, {}", done, total, unit, speed);
  // Where nothing is done yet, nobody knows how long the rest takes.
  if (done == 0) return text;
  return text + fmt::format(", {} left", clockText(static_cast<double>(total - done) / rate));
}

Progress::Progress(bool quiet, std::uint64_t total, const char* unit)
    : line_(quiet), total_(total), unit_(unit) {}

void Progress::show(std::uint64_t done) {
  if (line_.isDue()) line_.show(progressText(done, total_, unit_, line_.seconds()));
}

}  // namespace KPF_TOOL

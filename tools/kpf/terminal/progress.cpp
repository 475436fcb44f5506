#include "tools/kpf/terminal/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace KPF_TOOL {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr const char* kWipeLine = "\r\033[K";  // to the first column, and erase to the end

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
    : visible_(!quiet && isatty(STDERR_FILENO) != 0),
      total_(total),
      unit_(unit),
      begin_(Clock::now()),
      shown_(begin_) {}

Progress::~Progress() {
  if (visible_) std::fputs(kWipeLine, stderr);
}

void Progress::show(std::uint64_t done) {
  const auto now = Clock::now();
  if (!visible_ || now - shown_ < kInterval) return;
  shown_ = now;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  fmt::print(stderr, "{}{}", kWipeLine, progressText(done, total_, unit_, seconds));
}

}  // namespace KPF_TOOL

#include "tools/kpf/terminal/status_line.h"

#include <fmt/format.h>

#include <cstdio>

#include "tools/kpf/terminal/system.h"
#include "tools/kpf/terminal/tell.h"

namespace KPF_TOOL {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr const char* kWipeLine = "\r\033[K";  // to the first column, and erase to the end

}  // namespace

StatusLine::StatusLine(bool quiet)
    : visible_(!quiet && errorIsTerminal()), begin_(Clock::now()), shown_(begin_) {}

StatusLine::~StatusLine() {
  if (visible_) std::fputs(kWipeLine, stderr);
}

bool StatusLine::isDue() const { return visible_ && Clock::now() - shown_ >= kInterval; }

void StatusLine::show(const std::string& text) {
  shown_ = Clock::now();
  tell("{}{}", kWipeLine, text);
}

double StatusLine::seconds() const {
  return std::chrono::duration<double>(Clock::now() - begin_).count();
}

}  // namespace KPF_TOOL

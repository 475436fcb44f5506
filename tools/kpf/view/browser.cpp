#include "tools/kpf/view/browser.h"

#include <fmt/format.h>
#include <spawn.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace KPF_TOOL {
namespace {

bool hasDesktop() {
  const char* const x11 = std::getenv("DISPLAY");
  const char* const wayland = std::getenv("WAYLAND_DISPLAY");
  return (x11 != nullptr && *x11 != 0) || (wayland != nullptr && *wayland != 0);
}

/// A page that leads on to the address, in a file of mode 600. @return its name, or "".
std::string writeLead(const std::string& address) {
  const char* const folder = std::getenv("TMPDIR");
  std::string name = std::string(folder != nullptr ? folder : "/tmp") + "/kpf-view-XXXXXX.html";
  const int file = mkstemps(name.data(), static_cast<int>(std::strlen(".html")));
  if (file < 0) return "";
  const std::string page = fmt::format(
      "<!doctype html><meta name=referrer content=no-referrer>"
      "<meta http-equiv=refresh content=\"0;url={0}\"><a href=\"{0}\">kpf view</a>\n",
      address);
  const ssize_t written = write(file, page.data(), page.size());
  close(file);
  if (written == static_cast<ssize_t>(page.size())) return name;
  unlink(name.c_str());
  return "";
}

}  // namespace

Browser::Browser(const std::string& address) {
  if (!hasDesktop()) return;
  file_ = writeLead(address);
  if (file_.empty()) return;
  char program[] = "xdg-open";
  char* const arguments[] = {program, file_.data(), nullptr};
  pid_t child = 0;
  if (posix_spawnp(&child, program, nullptr, nullptr, arguments, environ) != 0) {
    unlink(file_.c_str());
    file_.clear();
  }
}

Browser::~Browser() {
  if (!file_.empty()) unlink(file_.c_str());
}

}  // namespace KPF_TOOL

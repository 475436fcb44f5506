#include "tools/kpf/terminal/standard_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace KPF_TOOL {

// Opened the wrong way round, so that reading and writing fail as they would have.
void holdStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest that is free, which is this one.
    open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

std::optional<std::string> flushStandardOutput() {
  if (std::fflush(stdout) != 0) return std::generic_category().message(errno);
  if (std::ferror(stdout) != 0) return "it did not take everything";
  return std::nullopt;
}

}  // namespace KPF_TOOL

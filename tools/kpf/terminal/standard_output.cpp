#include "tools/kpf/terminal/standard_output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace KPF_TOOL {

std::optional<std::string> flushStandardOutput() {
  if (std::fflush(stdout) != 0) return std::generic_category().message(errno);
  if (std::ferror(stdout) != 0) return "it did not take everything";
  return std::nullopt;
}

}  // namespace KPF_TOOL

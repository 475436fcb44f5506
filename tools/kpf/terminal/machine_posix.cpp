#include <fmt/format.h>
#include <unistd.h>

#include <string>

#include "tools/kpf/terminal/machine.h"

namespace KPF_TOOL {

double machineMemory() {
  return static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

std::string startSignalText() { return fmt::format("SIGUSR1 to process {}", getpid()); }

}  // namespace KPF_TOOL

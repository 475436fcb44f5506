#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string>

#include "tools/kpf/terminal/machine.h"

namespace KPF_TOOL {

double machineMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return GlobalMemoryStatusEx(&status) != 0 ? static_cast<double>(status.ullTotalPhys) : 0;
}

std::string startSignalText() { return {}; }

}  // namespace KPF_TOOL

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <atomic>

#include "tools/kpf/terminal/interrupt.h"

namespace KPF_TOOL {
namespace {

// Windows tells of Ctrl-C on a thread of its own.
std::atomic<bool> interrupted{false};

BOOL WINAPI noteInterrupt(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  interrupted = true;
  return TRUE;
}

}  // namespace

Interrupt::Interrupt() { SetConsoleCtrlHandler(noteInterrupt, TRUE); }

bool Interrupt::requested() { return interrupted; }

}  // namespace KPF_TOOL

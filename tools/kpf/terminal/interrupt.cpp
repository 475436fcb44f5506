#include "tools/kpf/terminal/interrupt.h"

#include <csignal>

namespace KPF_TOOL {
namespace {

// The one kind of object that a signal handler may write to.
volatile std::sig_atomic_t interrupted = 0;

void noteInterrupt(int) { interrupted = 1; }

}  // namespace

// Not restarted: a command that waits for a camera or a pipe returns from its wait.
Interrupt::Interrupt() {
  struct sigaction action {};
  action.sa_handler = noteInterrupt;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool Interrupt::requested() { return interrupted != 0; }

}  // namespace KPF_TOOL

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
  // A terminal that is closed, unless the user wished to go on without it (nohup).
  struct sigaction before {};
  if (sigaction(SIGHUP, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
    sigaction(SIGHUP, &action, nullptr);
  }
  // A reader that has gone is a write that fails, and no end of the program: what nobody listens to
  // any more may be a line of progress.
  std::signal(SIGPIPE, SIG_IGN);
}

bool Interrupt::requested() { return interrupted != 0; }

}  // namespace KPF_TOOL

#include "tools/kpf/terminal/start_signal.h"

#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstring>

namespace KPF_TOOL {
namespace {

volatile std::sig_atomic_t signalled = 0;

void noteSignal(int) { signalled = 1; }

}  // namespace

StartSignal::StartSignal(bool readsKeys) : readsKeys_(readsKeys) {
  struct sigaction action {};
  action.sa_handler = noteSignal;
  action.sa_flags = SA_RESTART;
  sigaction(SIGUSR1, &action, nullptr);
}

bool StartSignal::given() {
  const bool key = enterPressed();
  if (signalled == 0) return key;
  signalled = 0;
  return true;
}

bool StartSignal::enterPressed() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  if (!readsKeys_ || poll(&input, 1, 0) != 1) return false;
  char keys[256];
  const auto count = read(STDIN_FILENO, keys, sizeof keys);
  readsKeys_ = count > 0;  // nobody is there any more
  return count > 0 && std::memchr(keys, '\n', static_cast<std::size_t>(count)) != nullptr;
}

}  // namespace KPF_TOOL

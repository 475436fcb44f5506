#include <conio.h>

#include "tools/kpf/terminal/start_signal.h"

namespace KPF_TOOL {

// There is no SIGUSR1.
StartSignal::StartSignal(bool readsKeys) : readsKeys_(readsKeys) {}

bool StartSignal::given() { return enterPressed(); }

bool StartSignal::enterPressed() {
  bool pressed = false;
  while (readsKeys_ && _kbhit() != 0) pressed = _getch() == '\r' || pressed;
  return pressed;
}

}  // namespace KPF_TOOL

#include "tools/kpf/view/view.h"

#include <fmt/format.h>
#include <malloc.h>
#include <poll.h>

#include <cstdio>
#include <optional>

#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/view/browser.h"
#include "tools/kpf/view/page_answer.h"
#include "tools/kpf/view/server.h"

namespace KPF_TOOL {
namespace {

/// glibc keeps what a thread gives back for that thread. A browser's connections come and go, and
/// each of sixteen threads would hold an answer's pictures; of one store the next one gets them,
/// which also spares it the faults of fresh memory.
void shareMemoryAmongThreads() {
#ifdef M_ARENA_MAX
  mallopt(M_ARENA_MAX, 1);
#endif
}

}  // namespace

Outcome view(const ViewOptions& options) {
  shareMemoryAmongThreads();
  const Interrupt interrupt;
  PageAnswer answer(options);
  const Server server(options.port,
                      [&answer](const Request& request) { return answer.of(request); });
  fmt::print("{}\n", server.address());
  std::fflush(stdout);
  tell("kpf: open this address in a browser; Ctrl-C ends\n");
  std::optional<Browser> browser;
  if (!options.noBrowser) browser.emplace(server.address());
  constexpr int kLook = 200;  // milliseconds, where another thread gets the signal
  while (!Interrupt::requested()) poll(nullptr, 0, kLook);
  return Outcome::kDone;
}

}  // namespace KPF_TOOL

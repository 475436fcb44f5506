// The lines of the library that this one holds, on their way to the caller's callback.
#include <mutex>

#include "capi/kpf.h"
#include "log/vx_log_sink.h"

namespace {

struct Listener {
  std::mutex mutex;  // held while the callback runs: one line at a time, and none once it is unset
  kpf_log_callback callback = nullptr;
  void* payload = nullptr;
};

// Never destroyed: a thread may speak while the process ends.
Listener& listener() {
  static Listener& one = *new Listener;
  return one;
}

void speak(unsigned level, const char* line) noexcept {
  Listener& to = listener();
  const std::lock_guard lock(to.mutex);
  if (to.callback != nullptr) to.callback(static_cast<int32_t>(level), line, to.payload);
}

// Set when the library is loaded, before anything can be logged: nothing ever goes to standard
// output.
[[maybe_unused]] const bool sinkIsSet = [] {
  VX_LOG::lineSink = speak;
  return true;
}();

}  // namespace

void kpf_set_log(kpf_log_callback callback, void* payload) {
  Listener& to = listener();
  const std::lock_guard lock(to.mutex);
  to.callback = callback;
  to.payload = payload;
}

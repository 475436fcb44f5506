#include "interface/handle_faults.h"

#include <cstdint>

#include "vx_log.h"

namespace VLM_INTERNAL {

void logFault(HandleState state, unsigned handle, const HandleWording& wording,
              const char* function) {
  const auto log = VX_LOG::VxLogger::factory();
  if (state == HandleState::kZero) {
    log->vx_log(VX_LOG::kDebug, "%s: %s is %s!", function, wording.name,
                wording.asPointer ? "nullptr" : "0");
  } else if (wording.asPointer) {
    log->vx_log(VX_LOG::kDebug, "%s: %s (%p) is invalid!", function, wording.name,
                // NOLINTNEXTLINE(performance-no-int-to-ptr): only printed
                reinterpret_cast<void*>(std::uintptr_t{handle}));
  } else {
    log->vx_log(VX_LOG::kDebug, "%s: %s (%d) is invalid!", function, wording.name,
                static_cast<int>(handle));
  }
}

}  // namespace VLM_INTERNAL

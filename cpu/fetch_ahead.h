// Asking for memory before a loop comes to it, which the processor does by itself only up to the
// end of a page. For files that are compiled for one instruction set: everything is local to the
// including file.
#ifndef CPU_FETCH_AHEAD_H
#define CPU_FETCH_AHEAD_H

#include <cstddef>
#include <cstdint>

namespace CPU {
namespace {

/// The address `ahead` bytes behind `at`, only to be asked for: it may lie behind the array, where
/// a loop over one row comes to the next.
inline const void* addressAhead(const void* at, std::size_t ahead) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): no pointer may be formed so far behind an array.
  return reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(at) + ahead);
}

/// Asks for the cache line `ahead` bytes behind `at`. Where there is no memory, nothing happens.
inline void fetchAhead(const void* at, std::size_t ahead) {
  __builtin_prefetch(addressAhead(at, ahead), 0, 3);
}

/// The same for what is used only once: it takes no other's place in the caches.
inline void fetchOnceAhead(const void* at, std::size_t ahead) {
  __builtin_prefetch(addressAhead(at, ahead), 0, 0);
}

}  // namespace
}  // namespace CPU

#endif

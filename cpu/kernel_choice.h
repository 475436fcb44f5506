// Which of a room's kernel sets is in use. For the choosers only: a file that is compiled for one
// instruction set would carry these inline functions to processors without it.
#ifndef CPU_KERNEL_CHOICE_H
#define CPU_KERNEL_CHOICE_H

#include <array>
#include <atomic>
#include <cstddef>
#include <iterator>

#include "cpu/isa.h"

namespace CPU {

/// Whether this processor runs what is compiled for `isa`.
inline bool runs([[maybe_unused]] Isa isa) {
#ifdef VLM_X86_KERNELS
  const bool avx2 = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
  if (isa == Isa::kAvx2) return avx2;
  if (isa == Isa::kAvx512) {
    return avx2 && __builtin_cpu_supports("avx512f") != 0 &&
           __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vbmi") != 0;
  }
#endif
  return isa == Isa::kPlain;
}

/// One set of kernels for each instruction set, in the order of `Isa`; null where the build has
/// none. Safe on any thread.
template <class Kernels>
class KernelChoice {
 public:
  template <class... Sets>
  explicit constexpr KernelChoice(Sets... sets) : sets_{sets...} {}

  /// The set of `isa`, or null where this processor or build does not have it.
  const Kernels* of(Isa isa) const {
    return runs(isa) ? sets_[static_cast<std::size_t>(isa)] : nullptr;
  }

  /// The fastest set that this processor runs, looked up once, unless another was forced.
  const Kernels& inUse() {
    // Threads that come here first together look up the same set.
    const Kernels* kernels = inUse_;
    if (kernels == nullptr) inUse_ = kernels = fastest();
    return *kernels;
  }

  /// Uses the set of `isa` from now on. @return false, and nothing changes, where there is none.
  bool force(Isa isa) {
    const Kernels* const kernels = of(isa);
    if (kernels != nullptr) inUse_ = kernels;
    return kernels != nullptr;
  }

 private:
  const Kernels* fastest() const {
    const Kernels* found = nullptr;
    for (const Isa isa : kAllIsas) {
      if (of(isa) != nullptr) found = of(isa);
    }
    return found;
  }

  std::array<const Kernels*, std::size(kAllIsas)> sets_;
  std::atomic<const Kernels*> inUse_{nullptr};
};

}  // namespace CPU

#endif

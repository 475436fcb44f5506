// Which of several sets of kernels is in use, each written for one instruction set.
#ifndef CPU_KERNEL_CHOICE_H
#define CPU_KERNEL_CHOICE_H

#include <array>
#include <atomic>
#include <cstddef>
#include <iterator>

#include "cpu/isa.h"

namespace CPU {

/// Whether this processor runs what is compiled for `isa`.
inline bool isSupported(Isa isa) {
#ifdef __x86_64__
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

/**
 * Chooses among sets of the type `Set`, a record of function pointers, one for each instruction
 * set.
 *
 * Safe on any thread. The files of the kernels themselves may see this but not use it: they would
 * carry its inline functions, compiled for their instruction set, to processors without it.
 */
template <class Set>
class KernelChoice {
 public:
  /// Null stands for what the build has not.
  explicit constexpr KernelChoice(const Set* plain, const Set* avx2 = nullptr,
                                  const Set* avx512 = nullptr)
      : sets_{plain, avx2, avx512} {}

  /// The set of `isa`, or null where this processor or build does not have it.
  const Set* of(Isa isa) const {
    return isSupported(isa) ? sets_[static_cast<std::size_t>(isa)] : nullptr;
  }

  /// The fastest set that this processor runs, looked up once, unless another was forced.
  const Set& inUse() {
    // Threads that come here first together look up the same set.
    const Set* set = inUse_;
    if (set == nullptr) inUse_ = set = fastest();
    return *set;
  }

  /// For tests and benchmarks: uses the set of `isa` from now on.
  /// @return false, and nothing changes, where there is none.
  bool force(Isa isa) {
    const Set* const set = of(isa);
    if (set != nullptr) inUse_ = set;
    return set != nullptr;
  }

 private:
  const Set* fastest() const {
    const Set* found = nullptr;
    for (const Isa isa : kAllIsas) {
      if (of(isa) != nullptr) found = of(isa);
    }
    return found;
  }

  std::array<const Set*, std::size(kAllIsas)> sets_;  // in the order of `Isa`
  std::atomic<const Set*> inUse_{nullptr};
};

}  // namespace CPU

#endif

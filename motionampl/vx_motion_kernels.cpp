#include "motionampl/vx_motion_kernels.h"

#include <atomic>

#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr MotionKernels kPlain{addLoop, exchangeLoop, divideLoop, amplifyLoop};

#ifdef VLM_X86_KERNELS
bool hasAvx2() { return __builtin_cpu_supports("avx2") != 0; }

bool hasAvx512() {
  return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
         __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
         __builtin_cpu_supports("avx512vbmi") != 0;
}
#endif

const MotionKernels* fastest() {
  for (const Isa isa : {Isa::kAvx512, Isa::kAvx2}) {
    if (const MotionKernels* const kernels = motionKernelsOf(isa)) return kernels;
  }
  return &kPlain;
}

constinit std::atomic<const MotionKernels*> inUse{nullptr};

}  // namespace

const MotionKernels* motionKernelsOf(Isa isa) {
#ifdef VLM_X86_KERNELS
  if (isa == Isa::kAvx2) return hasAvx2() ? &kMotionKernelsAvx2 : nullptr;
  if (isa == Isa::kAvx512) return hasAvx2() && hasAvx512() ? &kMotionKernelsAvx512 : nullptr;
#endif
  return isa == Isa::kPlain ? &kPlain : nullptr;
}

bool forceMotionKernels(Isa isa) {
  const MotionKernels* const kernels = motionKernelsOf(isa);
  if (kernels != nullptr) inUse = kernels;
  return kernels != nullptr;
}

// Threads that come here first together look up the same set.
const MotionKernels& motionKernels() {
  const MotionKernels* kernels = inUse;
  if (kernels == nullptr) inUse = kernels = fastest();
  return *kernels;
}

}  // namespace VLM_KPF

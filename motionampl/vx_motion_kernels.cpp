#include "motionampl/vx_motion_kernels.h"

#include "cpu/kernel_choice.h"
#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr MotionKernels kPlain{addLoop, exchangeLoop, divideLoop, amplifyLoop};

#ifdef VLM_X86_KERNELS
constinit CPU::KernelChoice<MotionKernels> choice(&kPlain, &kMotionKernelsAvx2,
                                                  &kMotionKernelsAvx512);
#else
constinit CPU::KernelChoice<MotionKernels> choice(&kPlain, nullptr, nullptr);
#endif

}  // namespace

const MotionKernels& motionKernels() { return choice.inUse(); }

const MotionKernels* motionKernelsOf(Isa isa) { return choice.of(isa); }

bool forceMotionKernels(Isa isa) { return choice.force(isa); }

}  // namespace VLM_KPF

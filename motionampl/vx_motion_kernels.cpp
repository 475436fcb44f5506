#include "motionampl/vx_motion_kernels.h"

#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr MotionKernels kPlain{addLoop, exchangeLoop, divideLoop, amplifyLoop};

}  // namespace

#ifdef VLM_X86_KERNELS
constinit CPU::KernelChoice<MotionKernels> motionKernels(&kPlain, &kMotionKernelsAvx2,
                                                         &kMotionKernelsAvx512);
#else
constinit CPU::KernelChoice<MotionKernels> motionKernels(&kPlain);
#endif

}  // namespace VLM_KPF

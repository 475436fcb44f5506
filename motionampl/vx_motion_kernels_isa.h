// What the kernel files of the instruction sets offer the chooser.
#ifndef VX_MOTION_KERNELS_ISA_H
#define VX_MOTION_KERNELS_ISA_H

#include "motionampl/vx_motion_kernels.h"

namespace VLM_KPF {

extern const MotionKernels kMotionKernelsAvx2;
extern const MotionKernels kMotionKernelsAvx512;

/// The wider set uses this one too: with vectors of 512 bits it was slower, by a fifth and more.
void divideAvx2(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
                std::size_t samples);

}  // namespace VLM_KPF

#endif

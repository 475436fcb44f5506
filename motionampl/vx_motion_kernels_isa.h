// What the kernel files of the instruction sets offer the chooser.
#ifndef VX_MOTION_KERNELS_ISA_H
#define VX_MOTION_KERNELS_ISA_H

#include "motionampl/vx_motion_kernels.h"

namespace VLM_KPF {

extern const MotionKernels kMotionKernelsAvx2;
extern const MotionKernels kMotionKernelsAvx512;

/**
 * Up to this window a quotient is exact in single precision: rounding disturbs
 * (sum + 0.5) / window - 0.5 by less than the 0.5 / window that keep it from halfway between two
 * integers. Larger sums than a window of bytes has show as quotients above 255 or below 0.
 */
inline constexpr std::uint32_t kLargestFloatWindow = 8192;

/// How many sums or samples ahead the loops fetch. The processor's own look-ahead ends with a page;
/// two pages of sums made the division 1.3 times as fast, one page of samples the
/// amplification 1.15.
inline constexpr std::size_t kDivideAhead = 2048;
inline constexpr std::size_t kAmplifyAhead = 4096;

}  // namespace VLM_KPF

#endif

// What the kernel files of the instruction sets offer the chooser.
#ifndef VX_MOTION_KERNELS_ISA_H
#define VX_MOTION_KERNELS_ISA_H

#include <cstddef>
#include <cstdint>

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

/// How many bytes ahead the loops fetch: the sums of a division, the frames of an exchange (those
/// of a long window are in no cache), the frame of an amplification.
inline constexpr std::size_t kSumsAhead = std::size_t{8} << 10;
inline constexpr std::size_t kWindowAhead = std::size_t{4} << 10;
inline constexpr std::size_t kFrameAhead = std::size_t{16} << 10;

}  // namespace VLM_KPF

#endif

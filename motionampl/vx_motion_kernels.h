// The inner loops of the amplifier, one set for every instruction set that they are written for.
#ifndef VX_MOTION_KERNELS_H
#define VX_MOTION_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "cpu/kernel_choice.h"

namespace VLM_KPF {

/// Entries of a gain table: what is added to a sample, by its difference from the reference.
inline constexpr std::size_t kGains = 256;

/**
 * Element-wise loops over `samples` samples. Pointers need no alignment, the arrays of a call do
 * not overlap, and nothing beyond the samples is read or written. All sets give the same bytes.
 */
struct MotionKernels {
  /// sums[i] += newest[i], modulo 2^32.
  void (*add)(std::uint32_t* sums, const unsigned char* newest, std::size_t samples);

  /// sums[i] += newest[i] - oldest[i], modulo 2^32.
  void (*exchange)(std::uint32_t* sums, const unsigned char* newest, const unsigned char* oldest,
                   std::size_t samples);

  /// out[i] = the low 8 bits of sums[i] / window, truncated; window is not 0.
  void (*divide)(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
                 std::size_t samples);

  /// out[i] = min(frame[i] + gain[max(frame[i] - reference[i], 0)], 255); gain has kGains entries.
  void (*amplify)(const unsigned char* frame, const unsigned char* reference,
                  const unsigned char* gain, unsigned char* out, std::size_t samples);
};

/// The sets of the amplifier, and which of them is in use.
extern CPU::KernelChoice<MotionKernels> motionKernels;

}  // namespace VLM_KPF

#endif

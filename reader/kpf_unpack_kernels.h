// The inner loops of 12-bit unpacking, one set for every instruction set that they are written for.
#ifndef KPF_UNPACK_KERNELS_H
#define KPF_UNPACK_KERNELS_H

#include <cstddef>
#include <cstdint>

#include "cpu/kernel_choice.h"

namespace KPF_READER {

/// All sets give the same samples; the plain one is the definition.
struct UnpackKernels {
  /**
   * Unpacks `pairs` pixel pairs: 3 bytes of `in` become 2 samples of `out`.
   *
   * The bytes are: first sample's bits 15-8; second's bits 7-4 above the first's bits 7-4; second's
   * bits 15-8. Bits 3-0 of the samples are 0. `in` need not be aligned; the buffers do not overlap,
   * and nothing beyond the pairs is read or written.
   */
  void (*unpackPairs)(const unsigned char* in, std::uint16_t* out, std::size_t pairs);

  /// The same, moved right by 4: the value of each sample, 0 to 4095.
  void (*unpackValues)(const unsigned char* in, std::uint16_t* out, std::size_t pairs);
};

/// The sets of unpacking, and which of them is in use.
extern CPU::KernelChoice<UnpackKernels> unpackKernels;

}  // namespace KPF_READER

#endif

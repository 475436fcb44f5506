// The inner loops of packing, one set for every instruction set that they are written for.
#ifndef VX_PACK_KERNELS_H
#define VX_PACK_KERNELS_H

#include <cstddef>

#include "cpu/kernel_choice.h"

namespace VX_KPF_PACKED {

/// All sets give the same bytes; the plain one is the definition of the format.
struct PackKernels {
  /**
   * Packs `pairs` pixel pairs: 4 bytes of `in` become 3 bytes of `out`.
   *
   * A pair is two little-endian 16-bit samples A and B with 12 significant bits each,
   * left-justified. Its bytes are: A 15-8; B 7-4 above A 7-4; B 15-8. Neither pointer need be
   * aligned; the buffers do not overlap, and nothing beyond the pairs is read or written.
   */
  void (*packPairs)(const unsigned char* in, unsigned char* out, std::size_t pairs);

  /// Copies the `size` bytes of a row. The buffers do not overlap.
  void (*copyRow)(const unsigned char* in, unsigned char* out, std::size_t size);
};

/// The sets of packing, and which of them is in use.
extern CPU::KernelChoice<PackKernels> packKernels;

}  // namespace VX_KPF_PACKED

#endif

// The inner loops of packing, one set for every instruction set that they are written for.
#ifndef VX_PACK_KERNELS_H
#define VX_PACK_KERNELS_H

#include <cstddef>

#include "cpu/isa.h"

namespace VX_KPF_PACKED {

using CPU::Isa;

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

/// The set in use: the fastest that this processor runs, unless another was forced.
const PackKernels& packKernels();

/// The set of an instruction set, or null where this processor or build does not have it.
const PackKernels* packKernelsOf(Isa isa);

/// For tests and benchmarks: uses the set of `isa` from now on.
/// @return false, and nothing changes, where there is none.
bool forcePackKernels(Isa isa);

}  // namespace VX_KPF_PACKED

#endif

// The inner loops of 12-bit packing. The plain one is the definition of the format.
#ifndef VX_PACK_KERNELS_H
#define VX_PACK_KERNELS_H

#include <cstddef>

namespace VX_KPF_PACKED {

/**
 * Packs `pairs` pixel pairs: 4 bytes of `in` become 3 bytes of `out`.
 *
 * A pair is two little-endian 16-bit samples A and B with 12 significant bits each, left-justified.
 * Its bytes are: A 15-8; B 7-4 above A 7-4; B 15-8. Neither pointer need be aligned; the buffers do
 * not overlap, and nothing beyond the pairs is read or written.
 */
void packPairsPlain(const unsigned char* in, unsigned char* out, std::size_t pairs);

}  // namespace VX_KPF_PACKED

#endif

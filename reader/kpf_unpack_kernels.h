// The inner loops of 12-bit unpacking. The plain one is the definition.
#ifndef KPF_UNPACK_KERNELS_H
#define KPF_UNPACK_KERNELS_H

#include <cstddef>
#include <cstdint>

namespace KPF_READER {

/**
 * Unpacks `pairs` pixel pairs: 3 bytes of `in` become 2 samples of `out`.
 *
 * The bytes are: first sample's bits 15-8; second's bits 7-4 above the first's bits 7-4; second's
 * bits 15-8. Bits 3-0 of the samples are 0. `in` need not be aligned; the buffers do not overlap,
 * and nothing beyond the pairs is read or written.
 */
void unpackPairsPlain(const unsigned char* in, std::uint16_t* out, std::size_t pairs);

}  // namespace KPF_READER

#endif

// What the kernel files of the instruction sets and their chooser offer each other.
#ifndef VX_PACK_KERNELS_ISA_H
#define VX_PACK_KERNELS_ISA_H

#include <cstddef>

#include "packed/vx_pack_kernels.h"

namespace VX_KPF_PACKED {

extern const PackKernels kPackKernelsAvx2;
extern const PackKernels kPackKernelsAvx512;

/// How many bytes ahead the loops fetch the image. It pays where the packed frame stays in a cache,
/// as the memory of the frame before does.
inline constexpr std::size_t kPairsAhead = std::size_t{16} << 10;
inline constexpr std::size_t kRowAhead = std::size_t{8} << 10;

void packPairsPlain(const unsigned char* in, unsigned char* out, std::size_t pairs);

/// The set with the wider registers copies no faster, and takes this one.
void copyRowAvx2(const unsigned char* in, unsigned char* out, std::size_t size);

}  // namespace VX_KPF_PACKED

#endif

// What the kernel files of the instruction sets and their chooser offer each other.
#ifndef KPF_UNPACK_KERNELS_ISA_H
#define KPF_UNPACK_KERNELS_ISA_H

#include <cstddef>
#include <cstdint>

#include "reader/kpf_unpack_kernels.h"

namespace KPF_READER {

extern const UnpackKernels kUnpackKernelsAvx2;
extern const UnpackKernels kUnpackKernelsAvx512;

/// Bits that values are moved right by, from where the pairs have them.
inline constexpr int kFreeBits = 4;

void unpackPairsPlain(const unsigned char* in, std::uint16_t* out, std::size_t pairs);
void unpackValuesPlain(const unsigned char* in, std::uint16_t* out, std::size_t pairs);

}  // namespace KPF_READER

#endif

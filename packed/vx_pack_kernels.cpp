#include "packed/vx_pack_kernels.h"

#include <cstring>

#include "packed/vx_pack_kernels_isa.h"

namespace VX_KPF_PACKED {
namespace {

void copyRow(const unsigned char* in, unsigned char* out, std::size_t size) {
  if (size != 0) std::memcpy(out, in, size);  // no bytes may come with null pointers
}

constexpr PackKernels kPlain{packPairsPlain, copyRow};

}  // namespace

void packPairsPlain(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, in += 4, out += 3) {
    out[0] = in[1];
    out[1] = static_cast<unsigned char>((in[2] & 0xF0) | (in[0] >> 4));
    out[2] = in[3];
  }
}

#ifdef VLM_X86_KERNELS
constinit CPU::KernelChoice<PackKernels> packKernels(&kPlain, &kPackKernelsAvx2,
                                                     &kPackKernelsAvx512);
#else
constinit CPU::KernelChoice<PackKernels> packKernels(&kPlain);
#endif

}  // namespace VX_KPF_PACKED

#include "reader/kpf_unpack_kernels.h"

#include "reader/kpf_unpack_kernels_isa.h"

namespace KPF_READER {
namespace {

constexpr UnpackKernels kPlain{unpackPairsPlain, unpackValuesPlain};

}  // namespace

void unpackPairsPlain(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, in += 3, out += 2) {
    const unsigned shared = in[1];
    out[0] = static_cast<std::uint16_t>(in[0] << 8 | (shared & 0x0F) << 4);
    out[1] = static_cast<std::uint16_t>(in[2] << 8 | (shared & 0xF0));
  }
}

void unpackValuesPlain(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, in += 3, out += 2) {
    out[0] = static_cast<std::uint16_t>(in[0] << kFreeBits | (in[1] & 0x0F));
    out[1] = static_cast<std::uint16_t>(in[2] << kFreeBits | in[1] >> kFreeBits);
  }
}

#ifdef VLM_X86_KERNELS
constinit CPU::KernelChoice<UnpackKernels> unpackKernels(&kPlain, &kUnpackKernelsAvx2,
                                                         &kUnpackKernelsAvx512);
#else
constinit CPU::KernelChoice<UnpackKernels> unpackKernels(&kPlain);
#endif

}  // namespace KPF_READER

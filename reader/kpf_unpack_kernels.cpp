#include "reader/kpf_unpack_kernels.h"

namespace KPF_READER {

void unpackPairsPlain(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, in += 3, out += 2) {
    const unsigned shared = in[1];
    out[0] = static_cast<std::uint16_t>(in[0] << 8 | (shared & 0x0F) << 4);
    out[1] = static_cast<std::uint16_t>(in[2] << 8 | (shared & 0xF0));
  }
}

}  // namespace KPF_READER

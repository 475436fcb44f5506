#include "packed/vx_pack_kernels.h"

namespace VX_KPF_PACKED {

void packPairsPlain(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  for (std::size_t i = 0; i < pairs; ++i, in += 4, out += 3) {
    out[0] = in[1];
    out[1] = static_cast<unsigned char>((in[2] & 0xF0) | (in[0] >> 4));
    out[2] = in[3];
  }
}

}  // namespace VX_KPF_PACKED

#include "tools/kpf/media/grey_row.h"

#include <cstring>

namespace KPF_TOOL {

void copyGreyRow(const unsigned char* in, int bits, unsigned char* out, Samples samples,
                 std::size_t width) {
  const std::size_t inBytes = bits == 8 ? 1 : 2;
  // What is in the wanted form already, most of the time, goes as fast as memory allows.
  if (inBytes == bytesOf(samples) && (bits == 8 || bits == 16)) {
    std::memcpy(out, in, width * inBytes);
    return;
  }
  for (std::size_t x = 0; x < width; ++x) {
    const unsigned raw = inBytes == 1 ? in[x] : in[2 * x] | unsigned{in[2 * x + 1]} << 8;
    const unsigned value = raw << (16 - bits);
    if (samples == Samples::k16Bit) *out++ = static_cast<unsigned char>(value);
    *out++ = static_cast<unsigned char>(value >> 8);
  }
}

}  // namespace KPF_TOOL

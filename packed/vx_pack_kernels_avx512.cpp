// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 16 pairs.
#include <immintrin.h>

#include <cstdint>

#include "packed/vx_pack_kernels_isa.h"

namespace VX_KPF_PACKED {
namespace {

constexpr std::size_t kPairs = 16;
constexpr std::size_t kStored = (sizeof(__m512i) + 2) / 3;  // pairs that a whole store reaches into

/// Byte i is the place of byte i of 16 triples in 16 groups of four: i / 3 * 4 + i % 3 + 1.
__m512i triples() {
  return _mm512_setr_epi32(0x05030201, 0x0A090706, 0x0F0E0D0B, 0x15131211, 0x1A191716, 0x1F1E1D1B,
                           0x25232221, 0x2A292726, 0x2F2E2D2B, 0x35333231, 0x3A393736, 0x3F3E3D3B,
                           0, 0, 0, 0);
}

/// The 48 bytes of 16 pairs: A's nibble moves below B's, then bytes 1 to 3 of every four close up.
__m512i pack(__m512i pairs) {
  constexpr int kSecondWhereFirst = 0xCA;  // a ? b : c, for every bit
  const __m512i nibbleOfA = _mm512_set1_epi32(0x000F0000);
  const __m512i moved = _mm512_slli_epi32(pairs, 12);
  const __m512i joined = _mm512_ternarylogic_epi32(nibbleOfA, moved, pairs, kSecondWhereFirst);
  return _mm512_permutexvar_epi8(triples(), joined);
}

/// The lowest `count` bits; at most 63.
std::uint64_t lowest(std::size_t count) { return (std::uint64_t{1} << count) - 1; }

// A whole store reaches past its pairs, into what the next one writes.
void packPairs(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  for (; pairs >= kStored; pairs -= kPairs, in += 4 * kPairs, out += 3 * kPairs) {
    _mm512_storeu_si512(out, pack(_mm512_loadu_si512(in)));
  }
  while (pairs > 0) {
    const std::size_t count = pairs < kPairs ? pairs : kPairs;
    const __m512i loaded = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(lowest(count)), in);
    _mm512_mask_storeu_epi8(out, lowest(3 * count), pack(loaded));
    pairs -= count;
    in += 4 * count;
    out += 3 * count;
  }
}

}  // namespace

const PackKernels kPackKernelsAvx512{packPairs};

}  // namespace VX_KPF_PACKED

// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 16 pairs.
#include <immintrin.h>

#include "reader/kpf_unpack_kernels_isa.h"

namespace KPF_READER {
namespace {

constexpr std::size_t kPairs = 16;
constexpr std::size_t kLoaded = (sizeof(__m512i) + 2) / 3;  // pairs that a whole load reaches into

/// For every three bytes: the shared one and the first, the shared one again and the last.
__m512i sampleBytes() {
  return _mm512_setr_epi32(0x02010001, 0x05040304, 0x08070607, 0x0B0A090A, 0x0E0D0C0D, 0x11100F10,
                           0x14131213, 0x17161516, 0x1A191819, 0x1D1C1B1C, 0x201F1E1F, 0x23222122,
                           0x26252425, 0x29282728, 0x2C2B2A2B, 0x2F2E2D2E);
}

/// The 32 samples of 16 pairs: the shared byte below each sample's own, then the nibbles in place.
__m512i unpack(__m512i triples) {
  constexpr int kFirstOrBothOthers = 0xF8;  // a | b & c, for every bit
  const __m512i keptOfBytes = _mm512_set1_epi32(static_cast<int>(0xFFF0FF00));
  const __m512i nibbleOfA = _mm512_set1_epi32(0x000000F0);
  const __m512i bytes = _mm512_permutexvar_epi8(sampleBytes(), triples);
  const __m512i moved = _mm512_and_si512(_mm512_slli_epi32(bytes, 4), nibbleOfA);
  return _mm512_ternarylogic_epi32(moved, bytes, keptOfBytes, kFirstOrBothOthers);
}

/// The lowest `count` bits; at most 63.
std::uint64_t lowest(std::size_t count) { return (std::uint64_t{1} << count) - 1; }

void unpackPairs(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (; pairs >= kLoaded; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    _mm512_storeu_si512(out, unpack(_mm512_loadu_si512(in)));
  }
  while (pairs > 0) {
    const std::size_t count = pairs < kPairs ? pairs : kPairs;
    const __m512i triples = _mm512_maskz_loadu_epi8(lowest(3 * count), in);
    _mm512_mask_storeu_epi32(out, static_cast<__mmask16>(lowest(count)), unpack(triples));
    pairs -= count;
    in += 3 * count;
    out += 2 * count;
  }
}

}  // namespace

const UnpackKernels kUnpackKernelsAvx512{unpackPairs};

}  // namespace KPF_READER

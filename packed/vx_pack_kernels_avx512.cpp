// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 8 pairs: those of 16
// were slower by a fifth where the frames come from memory.
#include <immintrin.h>

#include <cstdint>

#include "packed/vx_pack_kernels_isa.h"

namespace VX_KPF_PACKED {
namespace {

constexpr std::size_t kPairs = 8;
constexpr std::size_t kStored = (sizeof(__m256i) + 2) / 3;  // pairs that a whole store reaches into

/// The 24 bytes of 8 pairs: A's nibble moves below B's, then bytes 1 to 3 of every four close up.
__m256i pack(__m256i pairs) {
  constexpr int kSecondWhereFirst = 0xCA;  // a ? b : c, for every bit
  const __m256i nibbleOfA = _mm256_set1_epi32(0x000F0000);
  const __m256i triples = _mm256_setr_epi8(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 21,
                                           22, 23, 25, 26, 27, 29, 30, 31, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m256i moved = _mm256_slli_epi32(pairs, 12);
  const __m256i joined = _mm256_ternarylogic_epi32(nibbleOfA, moved, pairs, kSecondWhereFirst);
  return _mm256_permutexvar_epi8(triples, joined);
}

__m256i load(const unsigned char* in) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
}

void pack8(const unsigned char* in, unsigned char* out) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), pack(load(in)));
}

void packUpTo8(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  const auto samples = static_cast<__mmask8>((1U << pairs) - 1);
  const auto bytes = static_cast<__mmask32>((1U << 3 * pairs) - 1);
  _mm256_mask_storeu_epi8(out, bytes, pack(_mm256_maskz_loadu_epi32(samples, in)));
}

/// 8 pairs and not a byte more. Two stores are faster than one under a mask.
void packExactly8(const unsigned char* in, unsigned char* out) {
  const __m256i packed = pack(load(in));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(packed));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(packed, 1));
}

// A whole store reaches past its pairs, into what the next one writes. The last 8 pairs overlap
// those before them.
void packPairs(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  if (pairs < kPairs) return packUpTo8(in, out, pairs);
  const unsigned char* const lastIn = in + 4 * (pairs - kPairs);
  unsigned char* const lastOut = out + 3 * (pairs - kPairs);
  for (; pairs >= kStored; pairs -= kPairs, in += 4 * kPairs, out += 3 * kPairs) pack8(in, out);
  if (pairs > kPairs) packExactly8(in, out);
  packExactly8(lastIn, lastOut);
}

}  // namespace

const PackKernels kPackKernelsAvx512{packPairs, copyRowAvx2};

}  // namespace VX_KPF_PACKED

// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 8 pairs: those of 16
// are slower where the frames come from memory.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "reader/kpf_unpack_kernels_isa.h"

namespace KPF_READER {
namespace {

constexpr std::size_t kPairs = 8;
constexpr std::size_t kLoaded = (sizeof(__m256i) + 2) / 3;  // pairs that a whole load reaches into

/// The 16 samples of 8 pairs: the shared byte below each sample's own, then the nibbles in place.
__m256i unpack(__m256i triples) {
  constexpr int kFirstOrBothOthers = 0xF8;  // a | b & c, for every bit
  const __m256i spread = _mm256_setr_epi8(1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11, 13, 12,
                                          13, 14, 16, 15, 16, 17, 19, 18, 19, 20, 22, 21, 22, 23);
  const __m256i keptOfBytes = _mm256_set1_epi32(static_cast<int>(0xFFF0FF00));
  const __m256i nibbleOfA = _mm256_set1_epi32(0x000000F0);
  const __m256i bytes = _mm256_permutexvar_epi8(spread, triples);
  const __m256i moved = _mm256_and_si256(_mm256_slli_epi32(bytes, 4), nibbleOfA);
  return _mm256_ternarylogic_epi32(moved, bytes, keptOfBytes, kFirstOrBothOthers);
}

template <int kRight>
void unpack8(const unsigned char* in, std::uint16_t* out) {
  const __m256i loaded = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
  const __m256i samples = _mm256_srli_epi16(unpack(loaded), kRight);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), samples);
}

template <int kRight>
void unpackUpTo8(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  const auto bytes = static_cast<__mmask32>((1U << 3 * pairs) - 1);
  const auto stored = static_cast<__mmask8>((1U << pairs) - 1);
  const __m256i samples = _mm256_srli_epi16(unpack(_mm256_maskz_loadu_epi8(bytes, in)), kRight);
  _mm256_mask_storeu_epi32(out, stored, samples);
}

/// @tparam kRight bits that the samples are moved right by; 0 costs nothing.
template <int kRight>
void unpackPairs(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (; pairs >= kLoaded; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    unpack8<kRight>(in, out);
  }
  for (; pairs > kPairs; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    unpackUpTo8<kRight>(in, out, kPairs);
  }
  unpackUpTo8<kRight>(in, out, pairs);
}

}  // namespace

const UnpackKernels kUnpackKernelsAvx512{unpackPairs<0>, unpackPairs<kFreeBits>};

}  // namespace KPF_READER

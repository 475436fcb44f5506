// Runs on processors with AVX2 only. Registers of 8 pairs. The compiler finds no shuffles of its
// own for steps of 3 bytes.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "reader/kpf_unpack_kernels_isa.h"

namespace KPF_READER {
namespace {

constexpr std::size_t kPairs = 8;
constexpr std::size_t kLoaded = (12 + 16 + 2) / 3;  // pairs that the second load reaches into

/// 24 bytes, 12 at the beginning of each half.
__m256i loadHalves(const unsigned char* in) {
  const __m128i lower = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i upper = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 12));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(lower), upper, 1);
}

/// The 16 samples of 8 pairs: the shared byte below each sample's own, then the nibbles in place.
__m256i unpack(__m256i halves) {
  const __m256i spread =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11));
  const __m256i keptOfBytes = _mm256_set1_epi32(static_cast<int>(0xFFF0FF00));
  const __m256i nibbleOfA = _mm256_set1_epi32(0x000000F0);
  const __m256i bytes = _mm256_shuffle_epi8(halves, spread);
  const __m256i moved = _mm256_slli_epi32(bytes, 4);
  return _mm256_or_si256(_mm256_and_si256(bytes, keptOfBytes), _mm256_and_si256(moved, nibbleOfA));
}

void unpackPairs(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (; pairs >= kLoaded; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), unpack(loadHalves(in)));
  }
  unpackPairsPlain(in, out, pairs);
}

void unpackValues(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (; pairs >= kLoaded; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    const __m256i samples = unpack(loadHalves(in));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_srli_epi16(samples, kFreeBits));
  }
  unpackValuesPlain(in, out, pairs);
}

}  // namespace

const UnpackKernels kUnpackKernelsAvx2{unpackPairs, unpackValues};

}  // namespace KPF_READER

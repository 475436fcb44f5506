// Runs on processors with AVX2 only. Registers of 8 pairs. The compiler finds no shuffles of its
// own for steps of 3 bytes.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "cpu/fetch_ahead.h"
#include "packed/vx_pack_kernels_isa.h"

namespace VX_KPF_PACKED {
namespace {

constexpr std::size_t kPairs = 8;
constexpr std::size_t kStored = (sizeof(__m256i) + 2) / 3;  // pairs that a whole store reaches into

__m256i load(const unsigned char* in) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
}

void store(unsigned char* out, __m256i bytes) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
}

/// Every pair's three bytes in bytes 1 to 3 of its four: A's nibble moves below B's.
__m256i join(__m256i pairs) {
  const __m256i nibbleOfA = _mm256_set1_epi32(0x000F0000);
  const __m256i moved = _mm256_slli_epi32(pairs, 12);
  return _mm256_xor_si256(pairs, _mm256_and_si256(_mm256_xor_si256(pairs, moved), nibbleOfA));
}

/// The 24 bytes of 8 joined pairs, followed by zeros.
__m256i squeeze(__m256i joined) {
  const __m256i triples = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, -1, -1, -1, -1));
  const __m256i halves = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
  return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(joined, triples), halves);
}

/// 8 pairs and not a byte more.
void packExactly8(const unsigned char* in, unsigned char* out) {
  const __m256i packed = squeeze(join(load(in)));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(packed));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(packed, 1));
}

// A whole store reaches past its pairs, into what the next one writes. The last 8 pairs overlap
// those before them.
void packPairs(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  if (pairs < kPairs) return packPairsPlain(in, out, pairs);
  const unsigned char* const lastIn = in + 4 * (pairs - kPairs);
  unsigned char* const lastOut = out + 3 * (pairs - kPairs);
  for (; pairs >= kStored; pairs -= kPairs, in += 4 * kPairs, out += 3 * kPairs) {
    CPU::fetchOnceAhead(in, kPairsAhead);
    store(out, squeeze(join(load(in))));
  }
  if (pairs > kPairs) packExactly8(in, out);
  packExactly8(lastIn, lastOut);
}

}  // namespace

// memcpy begins anew with every row, which is slow on frames from memory. So are narrow moves at
// the ends of a row, where one more register overlaps its neighbour. In between, no register is
// loaded from two cache lines.
void copyRowAvx2(const unsigned char* in, unsigned char* out, std::size_t size) {
  constexpr std::size_t kVector = sizeof(__m256i);
  if (size < kVector) {
    if (size != 0) std::memcpy(out, in, size);  // no bytes may come with null pointers
    return;
  }
  store(out, load(in));
  std::size_t at = kVector - reinterpret_cast<std::uintptr_t>(in) % kVector;
  for (; size - at >= 2 * kVector; at += 2 * kVector) {
    CPU::fetchOnceAhead(in + at, kRowAhead);
    store(out + at, load(in + at));
    store(out + at + kVector, load(in + at + kVector));
  }
  if (size - at >= kVector) store(out + at, load(in + at));
  store(out + size - kVector, load(in + size - kVector));
}

const PackKernels kPackKernelsAvx2{packPairs, copyRowAvx2};

}  // namespace VX_KPF_PACKED

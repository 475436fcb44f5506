// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 8 pairs: those of 16
// are slower wherever the image makes them load from two cache lines.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "cpu/fetch_ahead.h"
#include "packed/vx_pack_kernels_isa.h"

namespace VX_KPF_PACKED {
namespace {

constexpr std::size_t kPairs = 8;   // of a register
constexpr std::size_t kBlock = 32;  // pairs: four registers in, three out
constexpr std::size_t kSize = sizeof(__m256i);

/// Where the bytes of pairs stand in two registers whose bytes 1 to 3 of every four are the pairs'.
constexpr unsigned char kTriples[3][kSize] = {
    {1,  2,  3,  5,  6,  7,  9,  10, 11, 13, 14, 15, 17, 18, 19, 21,
     22, 23, 25, 26, 27, 29, 30, 31, 33, 34, 35, 37, 38, 39, 41, 42},
    {11, 13, 14, 15, 17, 18, 19, 21, 22, 23, 25, 26, 27, 29, 30, 31,
     33, 34, 35, 37, 38, 39, 41, 42, 43, 45, 46, 47, 49, 50, 51, 53},
    {22, 23, 25, 26, 27, 29, 30, 31, 33, 34, 35, 37, 38, 39, 41, 42,
     43, 45, 46, 47, 49, 50, 51, 53, 54, 55, 57, 58, 59, 61, 62, 63}};

__m256i load(const unsigned char* in) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
}

void store(unsigned char* out, __m256i bytes) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
}

/// Every pair's three bytes in bytes 1 to 3 of its four: A's nibble moves below B's.
__m256i join(__m256i pairs) {
  constexpr int kSecondWhereFirst = 0xCA;  // a ? b : c, for every bit
  const __m256i nibbleOfA = _mm256_set1_epi32(0x000F0000);
  const __m256i moved = _mm256_slli_epi32(pairs, 12);
  return _mm256_ternarylogic_epi32(nibbleOfA, moved, pairs, kSecondWhereFirst);
}

void packBlock(const unsigned char* in, unsigned char* out) {
  const __m256i a = join(load(in));
  const __m256i b = join(load(in + kSize));
  const __m256i c = join(load(in + 2 * kSize));
  const __m256i d = join(load(in + 3 * kSize));
  store(out, _mm256_permutex2var_epi8(a, load(kTriples[0]), b));
  store(out + kSize, _mm256_permutex2var_epi8(b, load(kTriples[1]), c));
  store(out + 2 * kSize, _mm256_permutex2var_epi8(c, load(kTriples[2]), d));
}

void packUpTo8(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  const auto samples = static_cast<__mmask8>((1U << pairs) - 1);
  const auto bytes = static_cast<__mmask32>((1U << 3 * pairs) - 1);
  const __m256i joined = join(_mm256_maskz_loadu_epi32(samples, in));
  _mm256_mask_storeu_epi8(out, bytes, _mm256_permutexvar_epi8(load(kTriples[0]), joined));
}

void packFew(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  for (; pairs > kPairs; pairs -= kPairs, in += 4 * kPairs, out += 3 * kPairs) {
    packUpTo8(in, out, kPairs);
  }
  packUpTo8(in, out, pairs);
}

// The last block overlaps the one before it.
void packPairs(const unsigned char* in, unsigned char* out, std::size_t pairs) {
  if (pairs < kBlock) return packFew(in, out, pairs);
  const unsigned char* const lastIn = in + 4 * (pairs - kBlock);
  unsigned char* const lastOut = out + 3 * (pairs - kBlock);
  for (; in < lastIn; in += 4 * kBlock, out += 3 * kBlock) {
    CPU::fetchOnceAhead(in, kPairsAhead);
    CPU::fetchOnceAhead(in + 2 * kSize, kPairsAhead);
    packBlock(in, out);
  }
  packBlock(lastIn, lastOut);
}

}  // namespace

const PackKernels kPackKernelsAvx512{packPairs, copyRowAvx2};

}  // namespace VX_KPF_PACKED

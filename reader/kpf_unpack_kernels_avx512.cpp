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

/// 8 pairs as 16 numbers, each sample's own byte above the one that both share.
__m256i spread(__m256i triples) {
  const __m256i order = _mm256_setr_epi8(1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11, 13, 12,
                                         13, 14, 16, 15, 16, 17, 19, 18, 19, 20, 22, 21, 22, 23);
  return _mm256_permutexvar_epi8(order, triples);
}

/// `a` where the bits of `mask` are set, `b` elsewhere.
__m256i choose(__m256i mask, __m256i a, __m256i b) {
  constexpr int kSecondOrThird = 0xCA;  // by the first, for every bit
  return _mm256_ternarylogic_epi32(mask, a, b, kSecondOrThird);
}

/// The first of a pair has the lower nibble of the shared byte, which moving left brings into
/// place; what that leaves behind are the zeros that both end in.
struct Pairs {
  static __m256i of(__m256i numbers) {
    const __m256i lastByteOrNibble = _mm256_set1_epi32(0x000F00FF);
    return choose(lastByteOrNibble, _mm256_slli_epi16(numbers, kFreeBits), numbers);
  }
};

/// The second of a pair is its value when moved right; the first has its lower nibble already.
struct Values {
  static __m256i of(__m256i numbers) {
    const __m256i nibbleOfFirst = _mm256_set1_epi32(0x0000000F);
    return choose(nibbleOfFirst, numbers, _mm256_srli_epi16(numbers, kFreeBits));
  }
};

template <class Form>
void unpack8(const unsigned char* in, std::uint16_t* out) {
  const __m256i loaded = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), Form::of(spread(loaded)));
}

template <class Form>
void unpackUpTo8(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  const auto bytes = static_cast<__mmask32>((1U << 3 * pairs) - 1);
  const auto stored = static_cast<__mmask8>((1U << pairs) - 1);
  const __m256i samples = Form::of(spread(_mm256_maskz_loadu_epi8(bytes, in)));
  _mm256_mask_storeu_epi32(out, stored, samples);
}

template <class Form>
void unpack(const unsigned char* in, std::uint16_t* out, std::size_t pairs) {
  for (; pairs >= kLoaded; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    unpack8<Form>(in, out);
  }
  for (; pairs > kPairs; pairs -= kPairs, in += 3 * kPairs, out += 2 * kPairs) {
    unpackUpTo8<Form>(in, out, kPairs);
  }
  unpackUpTo8<Form>(in, out, pairs);
}

}  // namespace

const UnpackKernels kUnpackKernelsAvx512{unpack<Pairs>, unpack<Values>};

}  // namespace KPF_READER

// Runs on processors with AVX2 only.
#include "bench/motionampl/gain_shuffles.h"

#include <immintrin.h>

#include <cstddef>

#include "cpu/fetch_ahead.h"
#include "motionampl/vx_motion_kernels_isa.h"

namespace BENCH {
namespace {

__m256i load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }

/// Half a gain table: its first sixteen entries, then what each sixteen differ in from those
/// before.
struct HalfTable {
  explicit HalfTable(const unsigned char* gain) {
    __m256i before = _mm256_setzero_si256();
    for (__m256i& step : steps) {
      const __m256i entries =
          _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(gain)));
      step = _mm256_xor_si256(entries, before);
      before = entries;
      gain += 16;
    }
  }

  /// The entries of indices from 0 on, and 0 for negative ones, which stay negative.
  __m256i of(__m256i indices) const {
    __m256i entries = _mm256_shuffle_epi8(steps[0], indices);
    for (int i = 1; i < 8; ++i) {
      indices = _mm256_subs_epi8(indices, _mm256_set1_epi8(16));
      entries = _mm256_xor_si256(entries, _mm256_shuffle_epi8(steps[i], indices));
    }
    return entries;
  }

  __m256i steps[8];
};

}  // namespace

void amplifyByShuffles(const unsigned char* frame, const unsigned char* reference,
                       const unsigned char* gain, unsigned char* out, std::size_t samples) {
  const HalfTable lower(gain);
  const HalfTable upper(gain + 128);
  for (std::size_t i = 0; i + 32 <= samples; i += 32) {
    CPU::fetchOnceAhead(frame + i, VLM_KPF::kFrameAhead);
    const __m256i newest = load(frame + i);
    const __m256i differences = _mm256_subs_epu8(newest, load(reference + i));
    const __m256i gains = _mm256_or_si256(
        lower.of(differences), upper.of(_mm256_xor_si256(differences, _mm256_set1_epi8(-128))));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_adds_epu8(newest, gains));
  }
}

}  // namespace BENCH

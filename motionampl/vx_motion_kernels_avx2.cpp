// Runs on processors with AVX2 only. Registers of 32 samples.
#include <immintrin.h>

#include "cpu/fetch_ahead.h"
#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr std::size_t kVector = 32;  // samples

__m256i load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }

void store(unsigned char* to, __m256i samples) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), samples);
}

__m256i twice(const unsigned char* table16) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table16)));
}

// --- Reference -----------------------------------------------------------------------------------

/// Eight quotients: (sum + 0.5) / window - 0.5, rounded to the nearest integer.
__m256i quotients(const std::uint32_t* sums, __m256 reciprocal, __m256 offset) {
  const __m256 sum = _mm256_cvtepi32_ps(load(sums));
  return _mm256_cvtps_epi32(_mm256_fmadd_ps(sum, reciprocal, offset));
}

/// Divides whole vectors. @return false when a quotient did not fit a byte.
bool divideVectors(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
                   std::size_t samples) {
  const __m256 reciprocal = _mm256_set1_ps(1.0F / static_cast<float>(window));
  const __m256 offset = _mm256_set1_ps(0.5F / static_cast<float>(window) - 0.5F);
  const __m256i inOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  __m256i seen = _mm256_setzero_si256();
  for (std::size_t i = 0; i < samples; i += kVector) {
    CPU::fetchAhead(sums + i, kSumsAhead);
    CPU::fetchAhead(sums + i + 16, kSumsAhead);
    const __m256i low = _mm256_packs_epi32(quotients(sums + i, reciprocal, offset),
                                           quotients(sums + i + 8, reciprocal, offset));
    const __m256i high = _mm256_packs_epi32(quotients(sums + i + 16, reciprocal, offset),
                                            quotients(sums + i + 24, reciprocal, offset));
    seen = _mm256_or_si256(seen, _mm256_or_si256(low, high));
    store(out + i, _mm256_permutevar8x32_epi32(_mm256_packus_epi16(low, high), inOrder));
  }
  return _mm256_testz_si256(seen, _mm256_set1_epi16(-256)) != 0;
}

void divide(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
            std::size_t samples) {
  std::size_t inVectors = window <= kLargestFloatWindow ? samples / kVector * kVector : 0;
  if (!divideVectors(sums, window, out, inVectors)) inVectors = 0;
  divideLoop(sums + inVectors, window, out + inVectors, samples - inVectors);
}

// --- Amplification -------------------------------------------------------------------------------

/**
 * A gain table as a line: gain[d] = d x slope, truncated, less one for some d. Of a negative
 * factor's table, that is true of 256 - gain[d].
 *
 * The tables of all factors are of this form: their steps are those of a fraction, and between two
 * fractions with denominators below 256 there is always one of 65536ths. A table was filled from
 * rounded products, though; those that rounding raised to the next integer bring the line up with
 * them, and what else it lifts over an integer is listed as surplus.
 */
struct Line {
  bool falling;               // the factor is negative: the line is of 256 - gain[d]
  unsigned whole;             // of the slope, modulo 256
  unsigned fraction;          // of the slope, in 65536ths
  unsigned char surplus[32];  // bit (d / 16) % 8 of byte d % 16, plus 16 from 128 on
  bool hasSurplus;
};

/// The lowest line that is nowhere below the table. @return false where none comes close enough.
bool fitLine(const unsigned char* gain, bool falling, Line& line) {
  const auto height = [=](unsigned d) { return (falling ? 256U - gain[d] : gain[d]) & 255; };
  line = {falling, height(1), 0, {}, false};
  for (unsigned d = 1; d < kGains; ++d) {
    const unsigned part = (height(d) - d * line.whole) & 255;
    const unsigned needed = (part * 65536 + d - 1) / d;
    line.fraction = needed > line.fraction ? needed : line.fraction;
  }
  if (line.fraction > 65535) return false;
  for (unsigned d = 0; d < kGains; ++d) {
    const unsigned surplus = (d * line.whole + (d * line.fraction >> 16) - height(d)) & 255;
    if (surplus > 1) return false;
    if (surplus == 0) continue;
    line.surplus[d % 16 + d / 128 * 16] |= static_cast<unsigned char>(1U << (d / 16 % 8));
    line.hasSurplus = true;
  }
  return true;
}

/// Points of the line for 16 differences of 16 bits each, their upper bytes cleared.
__m256i pointsOf(__m256i differences, const Line& line) {
  const __m256i whole =
      _mm256_mullo_epi16(differences, _mm256_set1_epi16(static_cast<short>(line.whole)));
  const __m256i part =
      _mm256_mulhi_epu16(differences, _mm256_set1_epi16(static_cast<short>(line.fraction)));
  return _mm256_and_si256(_mm256_add_epi16(whole, part), _mm256_set1_epi16(255));
}

/// -1 for every difference that is listed, else 0. A shuffle looks at the low 4 bits of an index,
/// and gives 0 where its bit 7 is set.
__m256i surplusOf(__m256i differences, const Line& line) {
  const __m256i lower = _mm256_shuffle_epi8(twice(line.surplus), differences);
  const __m256i upper = _mm256_shuffle_epi8(twice(line.surplus + 16),
                                            _mm256_xor_si256(differences, _mm256_set1_epi8(-128)));
  const __m256i sixteenths =
      _mm256_and_si256(_mm256_srli_epi16(differences, 4), _mm256_set1_epi8(7));
  const __m256i bits = _mm256_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                        1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0);
  const __m256i bit = _mm256_shuffle_epi8(bits, sixteenths);
  return _mm256_cmpeq_epi8(_mm256_and_si256(_mm256_or_si256(lower, upper), bit), bit);
}

template <bool kSurplus>
void amplifyVectors(const unsigned char* frame, const unsigned char* reference, const Line& line,
                    unsigned char* out, std::size_t samples) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i falling = _mm256_set1_epi8(line.falling ? -1 : 0);
  for (std::size_t i = 0; i < samples; i += kVector) {
    CPU::fetchOnceAhead(frame + i, kFrameAhead);
    const __m256i newest = load(frame + i);
    const __m256i differences = _mm256_subs_epu8(newest, load(reference + i));
    __m256i gains = _mm256_packus_epi16(pointsOf(_mm256_unpacklo_epi8(differences, zero), line),
                                        pointsOf(_mm256_unpackhi_epi8(differences, zero), line));
    if constexpr (kSurplus) gains = _mm256_add_epi8(gains, surplusOf(differences, line));
    gains = _mm256_sub_epi8(_mm256_xor_si256(gains, falling), falling);  // negative where falling
    store(out + i, _mm256_adds_epu8(newest, gains));
  }
}

void amplify(const unsigned char* frame, const unsigned char* reference, const unsigned char* gain,
             unsigned char* out, std::size_t samples) {
  Line line;
  const bool fits = fitLine(gain, false, line) || fitLine(gain, true, line);
  const std::size_t inVectors = fits ? samples / kVector * kVector : 0;
  const auto vectors = line.hasSurplus ? amplifyVectors<true> : amplifyVectors<false>;
  vectors(frame, reference, line, out, inVectors);
  amplifyLoop(frame + inVectors, reference + inVectors, gain, out + inVectors, samples - inVectors);
}

}  // namespace

const MotionKernels kMotionKernelsAvx2{addLoop, exchangeLines, divide, amplify};

}  // namespace VLM_KPF

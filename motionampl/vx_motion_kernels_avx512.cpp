// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 64 samples.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "cpu/fetch_ahead.h"
#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr std::size_t kVector = 64;  // samples

/// Sixteen quotients, as the AVX2 kernel has them.
__m512i quotients(const std::uint32_t* sums, __m512 reciprocal, __m512 offset) {
  const __m512 sum = _mm512_cvtepi32_ps(_mm512_loadu_si512(sums));
  return _mm512_cvtps_epi32(_mm512_fmadd_ps(sum, reciprocal, offset));
}

/// Divides whole vectors. @return false when a quotient did not fit a byte.
bool divideVectors(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
                   std::size_t samples) {
  const __m512 reciprocal = _mm512_set1_ps(1.0F / static_cast<float>(window));
  const __m512 offset = _mm512_set1_ps(0.5F / static_cast<float>(window) - 0.5F);
  const __m512i inOrder = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  __m512i seen = _mm512_setzero_si512();
  for (std::size_t i = 0; i < samples; i += kVector) {
    for (std::size_t line = 0; line < kVector; line += 16) {
      CPU::fetchAhead(sums + i + line, kSumsAhead);
    }
    const __m512i low = _mm512_packs_epi32(quotients(sums + i, reciprocal, offset),
                                           quotients(sums + i + 16, reciprocal, offset));
    const __m512i high = _mm512_packs_epi32(quotients(sums + i + 32, reciprocal, offset),
                                            quotients(sums + i + 48, reciprocal, offset));
    seen = _mm512_or_si512(seen, _mm512_or_si512(low, high));
    _mm512_storeu_si512(out + i, _mm512_permutexvar_epi32(inOrder, _mm512_packus_epi16(low, high)));
  }
  return _mm512_test_epi16_mask(seen, _mm512_set1_epi16(-256)) == 0;
}

void divide(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
            std::size_t samples) {
  std::size_t inVectors = window <= kLargestFloatWindow ? samples / kVector * kVector : 0;
  if (!divideVectors(sums, window, out, inVectors)) inVectors = 0;
  divideLoop(sums + inVectors, window, out + inVectors, samples - inVectors);
}

/// A gain table held in four registers.
struct Gains {
  explicit Gains(const unsigned char* gain)
      : quarters{_mm512_loadu_si512(gain), _mm512_loadu_si512(gain + 64),
                 _mm512_loadu_si512(gain + 128), _mm512_loadu_si512(gain + 192)} {}

  __m512i of(__m512i differences) const {
    const __m512i lower = _mm512_permutex2var_epi8(quarters[0], differences, quarters[1]);
    const __m512i upper = _mm512_permutex2var_epi8(quarters[2], differences, quarters[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(differences), lower, upper);
  }

  __m512i quarters[4];
};

__m512i raise(__m512i frame, __m512i reference, const Gains& gains) {
  return _mm512_adds_epu8(frame, gains.of(_mm512_subs_epu8(frame, reference)));
}

void amplify64(const unsigned char* frame, const unsigned char* reference, const Gains& gains,
               unsigned char* out) {
  _mm512_storeu_si512(out, raise(_mm512_loadu_si512(frame), _mm512_loadu_si512(reference), gains));
}

// Behind the first 64 samples, no register of the frame is loaded from two cache lines.
void amplify(const unsigned char* frame, const unsigned char* reference, const unsigned char* gain,
             unsigned char* out, std::size_t samples) {
  const Gains gains(gain);
  std::size_t i = 0;
  if (samples >= kVector) {
    amplify64(frame, reference, gains, out);
    i = kVector - reinterpret_cast<std::uintptr_t>(frame) % kVector;
  }
  for (; samples - i >= kVector; i += kVector) {
    CPU::fetchOnceAhead(frame + i, kFrameAhead);
    amplify64(frame + i, reference + i, gains, out + i);
  }
  const __mmask64 rest = (std::uint64_t{1} << (samples - i)) - 1;
  _mm512_mask_storeu_epi8(out + i, rest,
                          raise(_mm512_maskz_loadu_epi8(rest, frame + i),
                                _mm512_maskz_loadu_epi8(rest, reference + i), gains));
}

}  // namespace

const MotionKernels kMotionKernelsAvx512{addLoop, exchangeLines, divide, amplify};

}  // namespace VLM_KPF

// Runs on processors with AVX-512 F, BW, VL, DQ and VBMI only. Registers of 64 samples.
#include <immintrin.h>

#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr std::size_t kVector = 64;  // samples

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

void amplify(const unsigned char* frame, const unsigned char* reference, const unsigned char* gain,
             unsigned char* out, std::size_t samples) {
  const Gains gains(gain);
  std::size_t i = 0;
  for (; samples - i >= kVector; i += kVector) {
    _mm512_storeu_si512(
        out + i, raise(_mm512_loadu_si512(frame + i), _mm512_loadu_si512(reference + i), gains));
  }
  const __mmask64 rest = (std::uint64_t{1} << (samples - i)) - 1;
  _mm512_mask_storeu_epi8(out + i, rest,
                          raise(_mm512_maskz_loadu_epi8(rest, frame + i),
                                _mm512_maskz_loadu_epi8(rest, reference + i), gains));
}

}  // namespace

const MotionKernels kMotionKernelsAvx512{addLoop, exchangeLoop, divideAvx2, amplify};

}  // namespace VLM_KPF

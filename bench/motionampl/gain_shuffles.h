// The rival of the AVX2 kernel's gain: byte shuffles over the whole table.
#ifndef BENCH_GAIN_SHUFFLES_H
#define BENCH_GAIN_SHUFFLES_H

#include <cstddef>

namespace BENCH {

/// MotionKernels::amplify, of whole registers of 32 samples, for processors with AVX2.
void amplifyByShuffles(const unsigned char* frame, const unsigned char* reference,
                       const unsigned char* gain, unsigned char* out, std::size_t samples);

}  // namespace BENCH

#endif

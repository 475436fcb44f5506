// The loops as they are meant, which the compiler makes fit for each instruction set. Everything is
// local to the including file: no code for one processor can stand in for another's.
#ifndef KPF_WEIGHTED_SUMS_LOOPS_H
#define KPF_WEIGHTED_SUMS_LOOPS_H

#include <cstddef>

#include "tools/kpf/analysis/weighted_sums.h"

namespace KPF_TOOL {
namespace {

inline int sample16(const unsigned char* sample) { return sample[0] | sample[1] << 8; }

inline void subtractLevelsLoop(const unsigned char* __restrict frame,
                               const unsigned char* __restrict base, Samples samples,
                               std::size_t pixels, float* __restrict levels) {
  if (samples == Samples::k8Bit) {
    for (std::size_t i = 0; i < pixels; ++i) levels[i] = static_cast<float>(frame[i] - base[i]);
    return;
  }
  for (std::size_t i = 0; i < pixels; ++i) {
    const int difference = sample16(frame + 2 * i) - sample16(base + 2 * i);
    levels[i] = static_cast<float>(difference) * kLevelOf16;
  }
}

inline void addWeightedLoop(const LevelTile& tile, const float* __restrict weights,
                            float* __restrict sums) {
  const std::size_t stride = tile.stride, pixels = tile.pixels;
  for (std::size_t n = 0; n < tile.frames; n += kFramesAtOnce) {
    const float* const w = weights + n;
    const float w0 = w[0], w1 = w[1], w2 = w[2], w3 = w[3];
    const float w4 = w[4], w5 = w[5], w6 = w[6], w7 = w[7];
    const float* __restrict at = tile.levels + n * stride;
    for (std::size_t i = 0; i < pixels; ++i, ++at) {
      sums[i] += ((w0 * at[0] + w1 * at[stride]) + (w2 * at[2 * stride] + w3 * at[3 * stride])) +
                 ((w4 * at[4 * stride] + w5 * at[5 * stride]) +
                  (w6 * at[6 * stride] + w7 * at[7 * stride]));
    }
  }
}

inline void addSquaresLoop(const LevelTile& tile, float* __restrict sums,
                           float* __restrict squares) {
  const std::size_t stride = tile.stride, pixels = tile.pixels;
  for (std::size_t n = 0; n < tile.frames; n += kFramesAtOnce) {
    const float* __restrict at = tile.levels + n * stride;
    for (std::size_t i = 0; i < pixels; ++i, ++at) {
      float sum = 0, square = 0;
      for (std::size_t k = 0; k < kFramesAtOnce; ++k) {
        sum += at[k * stride];
        square += at[k * stride] * at[k * stride];
      }
      sums[i] += sum;
      squares[i] += square;
    }
  }
}

}  // namespace
}  // namespace KPF_TOOL

#endif

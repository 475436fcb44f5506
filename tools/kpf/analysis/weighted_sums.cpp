#include "tools/kpf/analysis/weighted_sums.h"

namespace KPF_TOOL {
namespace {

int sample16(const unsigned char* sample) { return sample[0] | sample[1] << 8; }

}  // namespace

void subtractLevels(const unsigned char* frame, const unsigned char* base, Samples samples,
                    std::size_t pixels, float* levels) {
  if (samples == Samples::k8Bit) {
    for (std::size_t i = 0; i < pixels; ++i) levels[i] = static_cast<float>(frame[i] - base[i]);
    return;
  }
  for (std::size_t i = 0; i < pixels; ++i) {
    const int difference = sample16(frame + 2 * i) - sample16(base + 2 * i);
    levels[i] = static_cast<float>(difference) * kLevelOf16;
  }
}

void addWeighted(const LevelTile& tile, const float* weights, float* sums) {
  const std::size_t stride = tile.stride;
  for (std::size_t n = 0; n < tile.frames; n += kFramesAtOnce) {
    // Copied: the compiler cannot know that writing sums does not change them.
    const float* const w = weights + n;
    const float w0 = w[0], w1 = w[1], w2 = w[2], w3 = w[3];
    const float w4 = w[4], w5 = w[5], w6 = w[6], w7 = w[7];
    for (std::size_t i = 0; i < tile.pixels; ++i) {
      const float* const at = tile.levels + n * stride + i;
      sums[i] += ((w0 * at[0] + w1 * at[stride]) + (w2 * at[2 * stride] + w3 * at[3 * stride])) +
                 ((w4 * at[4 * stride] + w5 * at[5 * stride]) +
                  (w6 * at[6 * stride] + w7 * at[7 * stride]));
    }
  }
}

void addSquares(const LevelTile& tile, float* sums, float* squares) {
  const std::size_t stride = tile.stride;
  for (std::size_t n = 0; n < tile.frames; n += kFramesAtOnce) {
    for (std::size_t i = 0; i < tile.pixels; ++i) {
      const float* const at = tile.levels + n * stride + i;
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

}  // namespace KPF_TOOL

// The inner loops of a map: over pixels, some frames at a time.
#ifndef KPF_WEIGHTED_SUMS_H
#define KPF_WEIGHTED_SUMS_H

#include <cstddef>

#include "cpu/kernel_choice.h"
#include "tools/kpf/frames/samples.h"

namespace KPF_TOOL {

/// The levels of some pixels in some frames.
struct LevelTile {
  const float* levels;
  std::size_t stride;  // from the levels of one frame to those of the next
  std::size_t pixels;
  std::size_t frames;  // a multiple of kFramesAtOnce
};

/// As many as leave their sums in registers.
constexpr std::size_t kFramesAtOnce = 8;

/// One set for every instruction set that they are compiled for; all give the same bits, since none
/// changes the order of additions.
struct SumKernels {
  /// Grey levels of a frame less those of another one, in `pixels` places. Small numbers keep their
  /// digits when many of them are added up in single precision.
  void (*subtractLevels)(const unsigned char* frame, const unsigned char* base, Samples samples,
                         std::size_t pixels, float* levels);

  /// To the sum of each pixel, adds its levels in all frames, each with the weight of its frame.
  void (*addWeighted)(const LevelTile& tile, const float* weights, float* sums);

  /// Adds the levels themselves and their squares.
  void (*addSquares)(const LevelTile& tile, float* sums, float* squares);
};

/// The sets, and which of them is in use.
extern CPU::KernelChoice<SumKernels> sumKernels;

}  // namespace KPF_TOOL

#endif

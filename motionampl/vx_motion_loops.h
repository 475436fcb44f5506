// The amplifier's loops as they are meant. Every kernel file compiles them for its instruction set,
// for what the compiler vectorises well and for the few samples behind the last whole vector.
// Everything is local to the including file: no code for one processor can stand in for another's.
#ifndef VX_MOTION_LOOPS_H
#define VX_MOTION_LOOPS_H

#include <cstddef>
#include <cstdint>

#include "cpu/fetch_ahead.h"
#include "motionampl/vx_motion_kernels_isa.h"

namespace VLM_KPF {
namespace {

inline void addLoop(std::uint32_t* __restrict sums, const unsigned char* __restrict newest,
                    std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) sums[i] += newest[i];
}

inline void exchangeLoop(std::uint32_t* __restrict sums, const unsigned char* __restrict newest,
                         const unsigned char* __restrict oldest, std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) {
    sums[i] += static_cast<std::uint32_t>(newest[i] - oldest[i]);
  }
}

/// The same by cache lines of samples, the frames fetched ahead: of a long window's frames, no
/// cache holds the oldest.
inline void exchangeLines(std::uint32_t* __restrict sums, const unsigned char* __restrict newest,
                          const unsigned char* __restrict oldest, std::size_t samples) {
  constexpr std::size_t kLine = 64;
  std::size_t i = 0;
  for (; samples - i >= kLine; i += kLine) {
    CPU::fetchAhead(newest + i, kWindowAhead);
    CPU::fetchAhead(oldest + i, kWindowAhead);
    exchangeLoop(sums + i, newest + i, oldest + i, kLine);
  }
  exchangeLoop(sums + i, newest + i, oldest + i, samples - i);
}

inline void divideLoop(const std::uint32_t* __restrict sums, std::uint32_t window,
                       unsigned char* __restrict out, std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) out[i] = static_cast<unsigned char>(sums[i] / window);
}

inline void amplifyLoop(const unsigned char* __restrict frame,
                        const unsigned char* __restrict reference,
                        const unsigned char* __restrict gain, unsigned char* __restrict out,
                        std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) {
    const int difference = frame[i] - reference[i];
    const int raised = frame[i] + gain[difference > 0 ? difference : 0];  // GCC makes no branch
    out[i] = static_cast<unsigned char>(raised < 255 ? raised : 255);
  }
}

}  // namespace
}  // namespace VLM_KPF

#endif

// Long recordings, a piece at a time.
#ifndef KPF_STRETCHES_H
#define KPF_STRETCHES_H

#include <cstddef>
#include <cstdint>

namespace KPF_TOOL {

/**
 * How frames are cut into equal stretches, of which each is looked at by itself; their powers are
 * averaged.
 *
 * Memory and time then do not grow with the length, and a motion that drifts a little in frequency
 * does not cancel itself. The price is the resolution: one cycle in a stretch.
 */
struct Stretches {
  static constexpr std::uint64_t kLongest = 1024;  // frames

  std::size_t length = 0;   // frames of each
  std::uint64_t count = 0;  // frames behind the last, fewer than `count`, are not used

  static Stretches of(std::uint64_t frames) {
    const std::uint64_t count = (frames + kLongest - 1) / kLongest;
    return {count == 0 ? 0 : static_cast<std::size_t>(frames / count), count};
  }
};

}  // namespace KPF_TOOL

#endif

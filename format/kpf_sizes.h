// How many bytes a frame, a record and a data file have.
#ifndef KPF_SIZES_H
#define KPF_SIZES_H

#include <concepts>
#include <cstdint>

#include "format/kpf_layout.h"

namespace KPF_FORMAT {

/// Bytes. A new data file begins before one would grow past this.
inline constexpr std::uint32_t kLargestDivFile = 0x7FFFFFFF;

/// Every depth but 8 is stored as 12 bits, two pixels in three bytes.
constexpr bool isPacked12(unsigned bitsPerPixel) { return bitsPerPixel != 8; }

// All three count in the arithmetic of their argument: the writer's sizes wrap at 32 bits, the
// reader's, whose header nobody vouches for, do not.

/// Bytes of the packed pixels of a frame.
template <std::unsigned_integral Size>
constexpr Size packedSizeOf(Size pixels, bool packed12) {
  return packed12 ? pixels * 3 / 2 : pixels;
}

/// Bytes of a frame record: its header, then `packedSize` bytes of pixels.
template <std::unsigned_integral Size>
constexpr Size recordSizeOf(Size packedSize) {
  return static_cast<Size>(FRAME_HEADER::kSize) + packedSize;
}

/// Records of `recordSize` bytes that fit into a data file.
/// @return 0 also for a size that wrapped to nothing.
template <std::unsigned_integral Size>
constexpr Size recordsPerDivFile(Size recordSize) {
  return recordSize == 0 ? 0 : kLargestDivFile / recordSize;
}

/// Bytes of the packed pixels of a frame, in 32-bit arithmetic that wraps.
constexpr std::uint32_t packedFrameSize(std::uint32_t width, std::uint32_t height,
                                        std::uint32_t bitsPerPixel) {
  return packedSizeOf(width * height, isPacked12(bitsPerPixel));
}

}  // namespace KPF_FORMAT

#endif

// From the caller's images to packed frames, and back.
#ifndef CAPI_IMAGES_H
#define CAPI_IMAGES_H

#include <cstddef>
#include <cstdint>

#include "format/kpf_sizes.h"

namespace KPF_C {

/// What a frame is like.
struct Geometry {
  std::size_t width = 0;
  std::size_t height = 0;
  bool packed12 = false;  // two pixels in three bytes, else a byte a pixel

  std::size_t pixels() const { return width * height; }
  std::size_t frameSize() const { return KPF_FORMAT::packedSizeOf(pixels(), packed12); }
  /// Bytes of an image's row.
  std::size_t rowSize() const { return packed12 ? 2 * width : width; }
  /// Where a row begins in the packed frame: of an odd width every other row leaves a gap.
  std::size_t rowStart(std::size_t y) const {
    return KPF_FORMAT::packedSizeOf(y * width, packed12);
  }
};

/// Throws a KPF_ERROR_ARGUMENT unless width, height and bits are those of a frame that a recording
/// can hold.
Geometry geometryOf(std::uint32_t width, std::uint32_t height, std::uint32_t bits);

/// Throws a KPF_ERROR_ARGUMENT unless `form` is one of KPF_SAMPLES_.
void requireSamplesForm(std::uint32_t form);

/// The stride in bytes for `rowStride` as the caller gave it; throws a KPF_ERROR_ARGUMENT when rows
/// would overlap or the image reach past what can be addressed.
std::size_t strideOf(const Geometry& geometry, std::size_t rowStride);

/**
 * Packs an image into `frameSize()` bytes, on the default OpenMP team where that is worth it.
 *
 * @param form KPF_SAMPLES_ of 12-bit images.
 * @return false when a sample of the form VALUE has more than 12 bits; `packed` is then undefined.
 */
bool packImage(const Geometry& geometry, const unsigned char* image, std::size_t stride,
               std::uint32_t form, unsigned char* packed);

/// Unpacks `frameSize()` bytes into `pixels()` samples.
void unpackFrame(const Geometry& geometry, const unsigned char* packed, std::uint16_t* samples,
                 std::uint32_t form);

}  // namespace KPF_C

#endif

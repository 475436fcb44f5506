// One frame of a packed stream: a 16-byte header followed, on disk, by the packed pixels.
#ifndef VX_KPF_PACKED_H
#define VX_KPF_PACKED_H

#include <vector>

#include "format/kpf_layout.h"
#include "memory/vx_frame_memory.h"

namespace VX_KPF_PACKED {

/**
 * A frame record, held by one owner at a time and not safe to share between threads.
 *
 * No operation reports an error: an allocation that fails throws, and a frame that could not be
 * filled has no packed data.
 */
class VxKPFPacked {
 public:
  /// Always 16, also while the frame has no header yet.
  static constexpr unsigned getHeaderSize() { return KPF_FORMAT::FRAME_HEADER::kSize; }

  /// The 16 header bytes, or null while there are none.
  const unsigned char* getHeader() const { return header.empty() ? nullptr : header.data(); }

  /// The `packedSize` packed bytes, or null while there are none.
  const unsigned char* getPackedData() const { return packedData.get(); }

  /// Writes the whole header; microseconds count within the second.
  void setHeader(unsigned sequenceNumber, long long seconds, unsigned microseconds);

  /**
   * Takes a frame record that is already packed.
   *
   * @param data the record, header first, `totalSize` bytes, copied; null makes an all-zero record,
   *        which also wipes a header set before.
   * @param totalSize bytes of the record; the frame keeps `totalSize` - 16 of pixels, wrapping.
   */
  void setPackedData(const unsigned char* data, unsigned totalSize, unsigned width, unsigned height,
                     int bitsPerPixel);

  /**
   * Packs an uncompressed image, row by row, on the default OpenMP team.
   *
   * @param image `height` rows, each padded to a multiple of 4 bytes. At 8 bits a byte a pixel; at
   *        any other depth 2 bytes a pixel, little-endian, of which bits 15 to 4 are kept.
   *
   * An odd width loses the last pixel of every row at 12 bits. A null image, or one that reaches
   * past 2^31 bytes, leaves the frame without packed data.
   */
  void setTiffImageData(const unsigned char* image, unsigned width, unsigned height,
                        int bitsPerPixel);

  std::vector<unsigned char> header;        // empty, or exactly 16 bytes
  VX_FRAME_MEMORY::FrameMemory packedData;  // null until set
  int bitsPerPixel = 0;                     // 8, or anything else for 12-bit packing
  unsigned packedSize = 0;                  // bytes of packedData
  unsigned height = 0;                      // rows
  unsigned width = 0;                       // pixels a row
};

}  // namespace VX_KPF_PACKED

#endif

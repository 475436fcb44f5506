#include "packed/vx_kpf_packed.h"

#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "format/kpf_sizes.h"
#include "packed/vx_pack_kernels.h"
#include "packed/vx_packing_team.h"

namespace VX_KPF_PACKED {
namespace {

// Offsets into an image or a frame stay below this.
constexpr std::uint64_t kAddressable = std::uint64_t{1} << 31;

constinit VX_FRAME_MEMORY::SpareFrame framePixels;

/// An image's rows in units of one packing step: a pixel at 8 bits, a pair of pixels at 12.
struct Rows {
  std::size_t itemsPerRow;
  std::size_t inStride;   // bytes from row to row of the image, padding included
  std::size_t itemBytes;  // bytes of the image that one item takes
};

Rows rowsOf(std::size_t width, int bitsPerPixel) {
  const std::size_t sampleBytes = bitsPerPixel == 8 ? 1 : 2;
  const std::size_t stride = (width * sampleBytes + 3) / 4 * 4;
  return bitsPerPixel == 8 ? Rows{width, stride, 1} : Rows{width / 2, stride, 4};
}

/// One pass over the image: packs items `first` to `first + count` of the whole, row by row.
class ImagePacker {
 public:
  ImagePacker(const unsigned char* image, unsigned char* packed, std::size_t width,
              int bitsPerPixel)
      : image_(image),
        packed_(packed),
        width_(width),
        eightBit_(bitsPerPixel == 8),
        rows_(rowsOf(width, bitsPerPixel)) {}

  std::size_t itemsPerRow() const { return rows_.itemsPerRow; }

  void pack(std::size_t first, std::size_t count) const {
    if (gapless()) return packRun(0, first, count);
    std::size_t row = first / rows_.itemsPerRow;
    std::size_t position = first % rows_.itemsPerRow;
    for (; count > 0; ++row, position = 0) {
      const std::size_t run = std::min(count, rows_.itemsPerRow - position);
      packRun(row, position, run);
      if (!eightBit_ && position + run == rows_.itemsPerRow) clearBehind(row);
      count -= run;
    }
  }

 private:
  // Without padding and without a dropped last pixel the rows are one long run.
  bool gapless() const { return rows_.inStride == rows_.itemsPerRow * rows_.itemBytes; }

  void packRun(std::size_t row, std::size_t position, std::size_t count) const {
    const unsigned char* in = image_ + row * rows_.inStride + position * rows_.itemBytes;
    if (eightBit_) {
      kernels_.copyRow(in, packed_ + row * width_ + position, count);
    } else {
      kernels_.packPairs(in, packed_ + (row * width_ + 2 * position) * 3 / 2, count);
    }
  }

  // The byte or two that the last pixel of an odd row would have shared with the next row.
  void clearBehind(std::size_t row) const {
    const std::size_t end = row * width_ * 3 / 2 + rows_.itemsPerRow * 3;
    std::fill(packed_ + end, packed_ + (row + 1) * width_ * 3 / 2, static_cast<unsigned char>(0));
  }

  const PackKernels& kernels_ = packKernels.inUse();
  const unsigned char* image_;
  unsigned char* packed_;
  std::size_t width_;
  bool eightBit_;
  Rows rows_;
};

/// Shares `items` out over the team, the first threads taking one more where they do not divide.
void packOnTeam(const ImagePacker& packer, std::size_t items, bool inParallel) {
#pragma omp parallel default(none) shared(packer, items) if (inParallel)
  {
    const auto threads = static_cast<std::size_t>(omp_get_num_threads());
    const auto thread = static_cast<std::size_t>(omp_get_thread_num());
    const std::size_t share = items / threads;
    const std::size_t remainder = items % threads;
    packer.pack(thread * share + std::min(thread, remainder), share + (thread < remainder ? 1 : 0));
  }
}

}  // namespace

void VxKPFPacked::setHeader(unsigned sequenceNumber, long long seconds, unsigned microseconds) {
  namespace layout = KPF_FORMAT::FRAME_HEADER;
  header.resize(layout::kSize);
  KPF_FORMAT::store(header.data(), layout::kSequenceNumber, sequenceNumber);
  KPF_FORMAT::store(header.data(), layout::kSeconds, static_cast<std::uint64_t>(seconds));
  KPF_FORMAT::store(header.data(), layout::kMicroseconds, microseconds);
}

void VxKPFPacked::setPackedData(const unsigned char* data, unsigned totalSize, unsigned widthIn,
                                unsigned heightIn, int bitsPerPixelIn) {
  bitsPerPixel = bitsPerPixelIn;
  width = widthIn;
  height = heightIn;
  packedSize = totalSize - getHeaderSize();
  header.resize(getHeaderSize());
  packedData.reset();
  packedData = framePixels.allocate(packedSize);
  if (data != nullptr) {
    std::memcpy(header.data(), data, getHeaderSize());
    std::memcpy(packedData.get(), data + getHeaderSize(), packedSize);
  } else {
    std::fill(header.begin(), header.end(), static_cast<unsigned char>(0));
    std::memset(packedData.get(), 0, packedSize);
  }
}

void VxKPFPacked::setTiffImageData(const unsigned char* image, unsigned widthIn, unsigned heightIn,
                                   int bitsPerPixelIn) {
  bitsPerPixel = bitsPerPixelIn;
  width = widthIn;
  height = heightIn;
  packedSize = KPF_FORMAT::packedFrameSize(width, height, static_cast<unsigned>(bitsPerPixel));
  packedData.reset();
  const Rows rows = rowsOf(width, bitsPerPixel);
  if (image == nullptr || (rows.inStride != 0 && height > kAddressable / rows.inStride)) return;

  packedData = framePixels.allocate(packedSize);
  const std::size_t pixels = std::size_t{width} * height;
  if (rows.itemsPerRow == 0) {
    std::memset(packedData.get(), 0, packedSize);  // rows of one pixel, the dropped one, or none
    return;
  }
  packOnTeam(ImagePacker(image, packedData.get(), width, bitsPerPixel), rows.itemsPerRow * height,
             pixels >= kTeamPixels);
}

}  // namespace VX_KPF_PACKED

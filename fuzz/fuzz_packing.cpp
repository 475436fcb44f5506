// Images of any size and content: packed by the rule, and back again.
//
// Input: depth, width, height, samples.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "kpf_reader.h"
#include "packed/vx_kpf_packed.h"

namespace {

using VX_KPF_PACKED::VxKPFPacked;

/// The sample at (x, y) as the recording must give it back.
unsigned expectedSample(const std::vector<unsigned char>& image, std::size_t stride, unsigned x,
                        unsigned y, unsigned width, bool eightBit) {
  if (eightBit) return image[y * stride + x] * 256U;
  if (width % 2 != 0 && x == width - 1) return 0;  // has no partner and is dropped
  const std::size_t at = y * stride + 2 * x;
  return (image[at] + image[at + 1] * 256U) & 0xFFF0U;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ::Input input(data, size);
  const bool eightBit = input.byte() % 2 == 0;
  const unsigned width = input.number(300);
  const unsigned height = input.number(24);
  const std::size_t rowBytes = eightBit ? width : 2 * width;
  const std::size_t stride = (rowBytes + 3) / 4 * 4;
  const std::vector<unsigned char> image = input.bytes(stride * height + 1);

  VxKPFPacked frame;
  frame.setTiffImageData(image.data(), width, height, eightBit ? 8 : 12);
  FUZZ::require(frame.getPackedData() != nullptr, "an image of this size can be packed");

  KPF_READER::Header header;
  header.width = width;
  header.height = height;
  header.packed12 = !eightBit;
  FUZZ::require(frame.packedSize == header.frameSize(), "writer and reader agree about the size");
  std::vector<std::uint16_t> samples(header.pixelCount());
  KPF_READER::unpackPixels(header, {frame.getPackedData(), frame.packedSize}, samples);
  for (unsigned y = 0; y < height; ++y) {
    for (unsigned x = 0; x < width; ++x) {
      FUZZ::require(samples[std::size_t{y} * width + x] ==
                        expectedSample(image, stride, x, y, width, eightBit),
                    "every sample comes back");
    }
  }
  return 0;
}

// Where the pixels of a frame stand, and their way back to 16-bit samples.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>

#include "reader/kpf_reader.h"
#include "reader/kpf_unpack_kernels.h"

namespace KPF_READER {
namespace {

void unpack8(std::span<const unsigned char> pixels, std::span<std::uint16_t> samples) {
  std::transform(pixels.begin(), pixels.end(), samples.begin(),
                 [](unsigned char pixel) { return static_cast<std::uint16_t>(pixel << 8); });
}

/// Rows of an odd width begin at half of three times their first pixel's number, cut: every other
/// row shares no byte with its neighbours but leaves one or two between them.
void unpack12(const Header& header, const unsigned char* pixels, std::uint16_t* samples) {
  const std::size_t width = header.width;
  for (std::size_t first = 0; first < header.pixelCount(); first += width) {
    unpackKernels.inUse().unpackPairs(pixels + first * 3 / 2, samples + first, width / 2);
    if (width % 2 != 0) samples[first + width - 1] = 0;
  }
}

/// Rows of an even width follow each other without a gap: the frame is one long run.
void unpackRun12(const Header& header, const unsigned char* pixels, std::uint16_t* samples) {
  unpackKernels.inUse().unpackPairs(pixels, samples, header.pixelCount() / 2);
}

}  // namespace

void unpackPixels(const Header& header, std::span<const unsigned char> pixels,
                  std::span<std::uint16_t> samples) {
  if (pixels.size() < header.frameSize() || samples.size() < header.pixelCount()) {
    throw std::invalid_argument("unpackPixels: a buffer is smaller than the frame");
  }
  if (!header.packed12) {
    unpack8(pixels.first(header.frameSize()), samples);
  } else if (header.width % 2 == 0) {
    unpackRun12(header, pixels.data(), samples.data());
  } else {
    unpack12(header, pixels.data(), samples.data());
  }
}

std::optional<std::size_t> findByteBetweenRows(const Header& header,
                                               std::span<const unsigned char> pixels) {
  if (pixels.size() < header.frameSize()) {
    throw std::invalid_argument("findByteBetweenRows: the buffer is smaller than the frame");
  }
  if (!header.packed12 || header.width % 2 == 0) return std::nullopt;
  const std::size_t stored = header.width / 2 * std::size_t{3};
  for (std::size_t first = 0; first < header.pixelCount(); first += header.width) {
    const std::size_t end = (first + header.width) * 3 / 2;
    for (std::size_t i = first * 3 / 2 + stored; i < end; ++i) {
      if (pixels[i] != 0) return i;
    }
  }
  return std::nullopt;
}

}  // namespace KPF_READER

#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <utility>

#include "packed/vx_kpf_packed.h"
#include "packed/vx_packing_team.h"
#include "tests/support/files.h"

namespace {

using TEST_SUPPORT::Bytes;
using VX_KPF_PACKED::VxKPFPacked;

std::size_t strideOf(std::size_t width, int bits) {
  const std::size_t bytes = bits == 8 ? width : 2 * width;
  return bytes % 4 == 0 ? bytes : bytes + 4 - bytes % 4;
}

Bytes randomImage(std::size_t width, std::size_t height, int bits) {
  std::mt19937 random(static_cast<unsigned>(width * 131 + height));
  Bytes image(strideOf(width, bits) * height);
  for (auto& byte : image) byte = static_cast<unsigned char>(random());
  return image;
}

Bytes pack(const Bytes& image, unsigned width, unsigned height, int bits) {
  VxKPFPacked frame;
  frame.setTiffImageData(image.data(), width, height, bits);
  return {frame.getPackedData(), frame.getPackedData() + frame.packedSize};
}

/// The packing rule pixel by pixel, as one would explain it.
Bytes packedByHand(const Bytes& image, std::size_t width, std::size_t height, int bits) {
  const std::size_t stride = strideOf(width, bits);
  Bytes out(bits == 8 ? width * height : width * height * 3 / 2, 0);
  for (std::size_t row = 0; row < height; ++row) {
    if (bits == 8) {
      for (std::size_t x = 0; x < width; ++x) out[row * width + x] = image[row * stride + x];
      continue;
    }
    for (std::size_t x = 0; x + 1 < width; x += 2) {
      const std::size_t in = row * stride + 2 * x;
      const unsigned a = (image[in + 1] * 256U + image[in]) / 16;
      const unsigned b = (image[in + 3] * 256U + image[in + 2]) / 16;
      const std::size_t to = (width * row + x) * 3 / 2;
      out[to] = static_cast<unsigned char>(a / 16);
      out[to + 1] = static_cast<unsigned char>(b % 16 * 16 + a % 16);
      out[to + 2] = static_cast<unsigned char>(b / 16);
    }
  }
  return out;
}

TEST(TiffPacking, TwoSamplesBecomeThreeBytes) {
  EXPECT_EQ(pack({0xC0, 0xAB, 0x30, 0x12}, 2, 1, 12), (Bytes{0xAB, 0x3C, 0x12}));
}

TEST(TiffPacking, LowestFourBitsAreDropped) {
  EXPECT_EQ(pack({0xCF, 0xAB, 0x3F, 0x12}, 2, 1, 12), (Bytes{0xAB, 0x3C, 0x12}));
}

TEST(TiffPacking, SecondRowOfTwoPixelsStartsAtByteThree) {
  EXPECT_EQ(pack({0xC0, 0xAB, 0x30, 0x12, 0x40, 0x56, 0x80, 0x97}, 2, 2, 12),
            (Bytes{0xAB, 0x3C, 0x12, 0x56, 0x84, 0x97}));
}

TEST(TiffPacking, EightBitRowsLoseTheirPadding) {
  EXPECT_EQ(pack({1, 2, 3, 0xFF, 4, 5, 6, 0xFF}, 3, 2, 8), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(TiffPacking, EveryDepthButEightTakesTwelveBits) {
  for (const int bits : {-1, 0, 7, 10, 12, 16}) {
    EXPECT_EQ(pack({0xC0, 0xAB, 0x30, 0x12}, 2, 1, bits), (Bytes{0xAB, 0x3C, 0x12})) << bits;
  }
}

TEST(TiffPacking, OddWidthLeavesGapsOfZero) {
  // Three rows of 0xFFF0 samples, each with two bytes of padding.
  const Bytes image(3 * 8, 0xFF);
  EXPECT_EQ(pack(image, 3, 3, 12),
            (Bytes{0xFF, 0xFF, 0xFF, 0, 0xFF, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0xFF, 0}));
}

TEST(TiffPacking, SinglePixelRowsStayZeroAtTwelveBits) {
  const Bytes image(5 * 4, 0xFF);
  EXPECT_EQ(pack(image, 1, 5, 12), Bytes(7, 0));
}

TEST(TiffPacking, NoPixelsAreAnArrayOfNoBytes) {
  const unsigned char image[4] = {};
  for (const int bits : {8, 12}) {
    for (const auto& [width, height] : {std::pair{0U, 5U}, {5U, 0U}, {0U, 0U}}) {
      VxKPFPacked frame;
      frame.setTiffImageData(image, width, height, bits);
      EXPECT_NE(frame.getPackedData(), nullptr);
      EXPECT_EQ(frame.packedSize, 0U);
    }
  }
}

TEST(TiffPacking, SetsTheGeometryAndNoHeader) {
  const Bytes image(4 * 2, 0);
  VxKPFPacked frame;
  frame.setTiffImageData(image.data(), 3, 2, 8);
  EXPECT_EQ(frame.width, 3U);
  EXPECT_EQ(frame.height, 2U);
  EXPECT_EQ(frame.bitsPerPixel, 8);
  EXPECT_EQ(frame.packedSize, 6U);
  EXPECT_EQ(frame.getHeader(), nullptr);
}

TEST(TiffPacking, SecondImageReplacesTheFirst) {
  const Bytes first(8, 0x11);
  VxKPFPacked frame;
  frame.setTiffImageData(first.data(), 4, 2, 8);
  const Bytes second{0xC0, 0xAB, 0x30, 0x12};
  frame.setTiffImageData(second.data(), 2, 1, 12);
  EXPECT_EQ(Bytes(frame.getPackedData(), frame.getPackedData() + frame.packedSize),
            (Bytes{0xAB, 0x3C, 0x12}));
  EXPECT_EQ(frame.width, 2U);
}

TEST(TiffPacking, NullImageLeavesNoData) {
  const Bytes first(8, 0x11);
  VxKPFPacked frame;
  frame.setTiffImageData(first.data(), 4, 2, 8);
  frame.setTiffImageData(nullptr, 4, 2, 8);
  EXPECT_EQ(frame.getPackedData(), nullptr);
}

TEST(TiffPacking, ImageBeyondTheAddressableRangeLeavesNoData) {
  const unsigned char image[4] = {};
  VxKPFPacked frame;
  frame.setTiffImageData(image, 65536, 32769, 8);  // its size alone would wrap to something small
  EXPECT_EQ(frame.getPackedData(), nullptr);
  frame.setTiffImageData(image, 32768, 65536, 12);
  EXPECT_EQ(frame.getPackedData(), nullptr);
  frame.setTiffImageData(image, 0xFFFFFFFF, 0xFFFFFFFF, 12);
  EXPECT_EQ(frame.getPackedData(), nullptr);
}

TEST(TiffPacking, EverySmallImageIsPackedByTheRule) {
  for (const int bits : {8, 12}) {
    for (unsigned width = 0; width <= 17; ++width) {
      for (unsigned height = 0; height <= 5; ++height) {
        const Bytes image = randomImage(width, height, bits);
        if (image.empty()) continue;
        EXPECT_EQ(pack(image, width, height, bits), packedByHand(image, width, height, bits))
            << width << " x " << height << " at " << bits;
      }
    }
  }
}

// The whole team takes part in images of this size, so that every border between two threads'
// shares falls somewhere else.
TEST(TiffPacking, ResultDoesNotDependOnTheNumberOfThreads) {
  constexpr unsigned kHeight = VX_KPF_PACKED::kTeamPixels / 514 + 1;
  const int before = omp_get_max_threads();
  for (const int bits : {8, 12}) {
    for (const unsigned width : {514U, 515U, 516U, 517U}) {
      const Bytes image = randomImage(width, kHeight, bits);
      const Bytes expected = packedByHand(image, width, kHeight, bits);
      for (const int threads : {1, 2, 3, 7}) {
        omp_set_num_threads(threads);
        EXPECT_TRUE(pack(image, width, kHeight, bits) == expected)
            << width << " at " << bits << " bits, " << threads << " threads";
      }
    }
  }
  omp_set_num_threads(before);
}

}  // namespace

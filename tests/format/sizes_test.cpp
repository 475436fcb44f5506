#include "format/kpf_sizes.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using KPF_FORMAT::packedFrameSize;
using KPF_FORMAT::packedSizeOf;
using KPF_FORMAT::recordSizeOf;
using KPF_FORMAT::recordsPerDivFile;

TEST(Sizes, PixelIsAByteOnlyAtExactlyEightBits) {
  EXPECT_EQ(packedFrameSize(640, 480, 8), 307200U);
  for (const unsigned bits : {0U, 1U, 7U, 9U, 10U, 12U, 16U, 0xFFFFFFFFU}) {
    EXPECT_EQ(packedFrameSize(640, 480, bits), 460800U) << bits;
  }
}

TEST(Sizes, OddNumberOfPixelsIsHalvedDownwards) {
  EXPECT_EQ(packedFrameSize(3, 3, 12), 13U);
  EXPECT_EQ(packedFrameSize(1, 1, 12), 1U);
}

TEST(Sizes, FrameWrapsAt32Bits) {
  EXPECT_EQ(packedFrameSize(65536, 65537, 8), 65536U);
  // 2^31 pixels, three times that wraps to 2^31, half of it is 2^30.
  EXPECT_EQ(packedFrameSize(32768, 65536, 12), 1U << 30);
}

TEST(Sizes, FrameOf64BitsDoesNotWrap) {
  EXPECT_EQ(packedSizeOf(std::uint64_t{1} << 31, true), std::uint64_t{3} << 30);
  EXPECT_EQ(packedSizeOf(std::uint64_t{65535} * 65535, false), 4294836225U);
}

TEST(Sizes, RecordIsItsHeaderAndItsPixels) {
  EXPECT_EQ(recordSizeOf(0U), 16U);
  EXPECT_EQ(recordSizeOf(1966080U), 1966096U);
  EXPECT_EQ(recordSizeOf(0xFFFFFFF0U), 0U) << "32 bits wrap";
  EXPECT_EQ(recordSizeOf(std::uint64_t{0xFFFFFFF0}), 0x100000000U);
}

TEST(Sizes, DataFileHoldsUpTo2147483647Bytes) {
  EXPECT_EQ(recordsPerDivFile(16U), 134217727U);
  EXPECT_EQ(recordsPerDivFile(1966096U), 1092U);
  EXPECT_EQ(recordsPerDivFile(1310736U), 1638U);
  EXPECT_EQ(recordsPerDivFile(2147483647U), 1U);
}

TEST(Sizes, RecordThatIsTooLargeOrWrappedFitsNoDataFile) {
  EXPECT_EQ(recordsPerDivFile(2147483648U), 0U);
  EXPECT_EQ(recordsPerDivFile(0xFFFFFFFFU), 0U);
  EXPECT_EQ(recordsPerDivFile(0U), 0U);
  EXPECT_EQ(recordsPerDivFile(std::uint64_t{1} << 32), 0U);
}

}  // namespace

#include "tools/kpf/media/grey_row.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {

using namespace KPF_TOOL;
using Bytes = std::vector<unsigned char>;

/// Converts a row and sees that nothing behind it is touched.
Bytes converted(const Bytes& in, int bits, Samples samples, std::size_t width) {
  constexpr unsigned char kGuard = 0xA5;
  Bytes out(width * bytesOf(samples) + 2, kGuard);
  copyGreyRow(in.data(), bits, out.data(), samples, width);
  EXPECT_EQ(out[out.size() - 2], kGuard);
  EXPECT_EQ(out[out.size() - 1], kGuard);
  out.resize(out.size() - 2);
  return out;
}

TEST(GreyRow, WhatFitsIsCopied) {
  EXPECT_EQ(converted({1, 2, 255}, 8, Samples::k8Bit, 3), (Bytes{1, 2, 255}));
  EXPECT_EQ(converted({0x34, 0x12, 0xFF, 0xEE}, 16, Samples::k16Bit, 2),
            (Bytes{0x34, 0x12, 0xFF, 0xEE}));
}

TEST(GreyRow, EightBitsFillTheUpperHalfOfSixteen) {
  EXPECT_EQ(converted({0, 1, 255}, 8, Samples::k16Bit, 3), (Bytes{0, 0, 0, 1, 0, 255}));
}

TEST(GreyRow, OfSixteenBitsTheUpperOnesStay) {
  EXPECT_EQ(converted({0xFF, 0x12, 0x00, 0x80}, 16, Samples::k8Bit, 2), (Bytes{0x12, 0x80}));
}

TEST(GreyRow, DepthsBetweenAreLeftJustified) {
  EXPECT_EQ(converted({0xFF, 0x03}, 10, Samples::k16Bit, 1), (Bytes{0xC0, 0xFF}));
  EXPECT_EQ(converted({0xBC, 0x0A}, 12, Samples::k16Bit, 1), (Bytes{0xC0, 0xAB}));
  EXPECT_EQ(converted({0x01, 0x20}, 14, Samples::k16Bit, 1), (Bytes{0x04, 0x80}));
}

TEST(GreyRow, DepthsBetweenAreCutToTheirUpperEight) {
  EXPECT_EQ(converted({0xFF, 0x03}, 10, Samples::k8Bit, 1), (Bytes{0xFF}));
  EXPECT_EQ(converted({0xBC, 0x0A}, 12, Samples::k8Bit, 1), (Bytes{0xAB}));
  EXPECT_EQ(converted({0x01, 0x20}, 14, Samples::k8Bit, 1), (Bytes{0x80}));
}

TEST(GreyRow, ARowMayBeEmpty) { EXPECT_EQ(converted({0}, 8, Samples::k16Bit, 0), Bytes{}); }

}  // namespace

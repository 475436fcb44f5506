#include <gtest/gtest.h>

#include "packed/vx_kpf_packed.h"
#include "tests/support/files.h"

namespace {

using TEST_SUPPORT::Bytes;
using VX_KPF_PACKED::VxKPFPacked;

Bytes headerOf(const VxKPFPacked& frame) {
  return {frame.getHeader(), frame.getHeader() + VxKPFPacked::getHeaderSize()};
}

Bytes pixelsOf(const VxKPFPacked& frame) {
  return {frame.getPackedData(), frame.getPackedData() + frame.packedSize};
}

TEST(Frame, NewFrameHoldsNothing) {
  const VxKPFPacked frame;
  EXPECT_EQ(frame.getHeader(), nullptr);
  EXPECT_EQ(frame.getHeaderSize(), 16U);
  EXPECT_EQ(frame.getPackedData(), nullptr);
  EXPECT_EQ(frame.bitsPerPixel, 0);
  EXPECT_EQ(frame.packedSize, 0U);
  EXPECT_EQ(frame.height, 0U);
  EXPECT_EQ(frame.width, 0U);
}

TEST(Frame, HeaderIsLittleEndianWithoutPadding) {
  VxKPFPacked frame;
  frame.setHeader(7, 4294967298, 999999);
  EXPECT_EQ(headerOf(frame),
            (Bytes{0x07, 0, 0, 0, 0x02, 0, 0, 0, 0x01, 0, 0, 0, 0x3F, 0x42, 0x0F, 0}));
}

TEST(Frame, NegativeSecondsAreStoredInTwosComplement) {
  VxKPFPacked frame;
  frame.setHeader(0xFFFFFFFF, -2, 0);
  EXPECT_EQ(headerOf(frame), (Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                    0xFF, 0xFF, 0, 0, 0, 0}));
}

TEST(Frame, SecondHeaderReplacesTheFirst) {
  VxKPFPacked frame;
  frame.setHeader(0x11111111, 0x2222222222222222, 0x33333333);
  frame.setHeader(1, 2, 3);
  EXPECT_EQ(headerOf(frame), (Bytes{1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0}));
}

TEST(Frame, HeaderOfAnotherLengthIsBroughtTo16Bytes) {
  VxKPFPacked frame;
  frame.header.assign(20, 0xEE);
  frame.setHeader(1, 2, 3);
  EXPECT_EQ(frame.header.size(), 16U);
}

TEST(Frame, PackedDataIsTakenVerbatim) {
  Bytes record;
  for (unsigned char i = 0; i < 22; ++i) record.push_back(static_cast<unsigned char>(0xF0 - i));
  VxKPFPacked frame;
  frame.setPackedData(record.data(), 22, 4, 1, 12);
  EXPECT_EQ(headerOf(frame), Bytes(record.begin(), record.begin() + 16));
  EXPECT_EQ(pixelsOf(frame), Bytes(record.begin() + 16, record.end()));
  EXPECT_EQ(frame.width, 4U);
  EXPECT_EQ(frame.height, 1U);
  EXPECT_EQ(frame.bitsPerPixel, 12);
  EXPECT_EQ(frame.packedSize, 6U);
}

TEST(Frame, NoDataWipesTheHeaderAndZeroesThePixels) {
  VxKPFPacked frame;
  frame.setHeader(5, 6, 7);
  frame.setPackedData(nullptr, 16 + 9, 3, 2, 12);
  EXPECT_EQ(headerOf(frame), Bytes(16, 0));
  EXPECT_EQ(pixelsOf(frame), Bytes(9, 0));
}

TEST(Frame, SecondPackedDataReplacesTheFirst) {
  const Bytes first(16 + 8, 1);
  const Bytes second(16 + 2, 2);
  VxKPFPacked frame;
  frame.setPackedData(first.data(), 16 + 8, 8, 1, 8);
  frame.setPackedData(second.data(), 16 + 2, 2, 1, 8);
  EXPECT_EQ(pixelsOf(frame), Bytes(2, 2));
  EXPECT_EQ(headerOf(frame), Bytes(16, 2));
}

TEST(Frame, RecordOfOnlyAHeaderHasAnArrayOfNoBytes) {
  const Bytes record(16, 9);
  VxKPFPacked frame;
  frame.setPackedData(record.data(), 16, 0, 0, 8);
  EXPECT_NE(frame.getPackedData(), nullptr);
  EXPECT_EQ(frame.packedSize, 0U);
}

}  // namespace

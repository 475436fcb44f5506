#include "tools/kpf/cameras/pixel_form.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/library_test.h"

namespace {

using namespace KPF_TOOL;
using Bytes = std::vector<unsigned char>;

class PixelFormTest : public TEST_SUPPORT::LibraryTest {
 protected:
  /// The pixels of a record made of a frame of 2 x 2.
  static Bytes packed(const std::string& name, const Bytes& frame) {
    PixelPacker packer(*pixelForm(name), 2, 2);
    EXPECT_EQ(packer.frameSize(), frame.size());
    Bytes record(16 + 6);
    packer.pack(frame.data(), record.data());
    return {record.begin() + 16, record.end()};
  }
  // The samples 0xABC, 0x123, 0xFED and 0x001 as a record has them: high byte of the first, the low
  // four bits of both, the second's above, high byte of the second.
  const Bytes wanted_ = {0xAB, 0x3C, 0x12, 0xFE, 0x1D, 0x00};
};

TEST_F(PixelFormTest, TwelveBitsInTwoBytes) {
  EXPECT_EQ(packed("Mono12", {0xBC, 0x0A, 0x23, 0x01, 0xED, 0x0F, 0x01, 0x00}), wanted_);
}

TEST_F(PixelFormTest, SixteenBitsLoseTheirLowestFour) {
  EXPECT_EQ(packed("Mono16", {0xCF, 0xAB, 0x30, 0x12, 0xD7, 0xFE, 0x1F, 0x00}), wanted_);
}

TEST_F(PixelFormTest, FourteenBitsLoseTheirLowestTwo) {
  // 0xABC << 2 | 3, 0x123 << 2, 0xFED << 2 | 1, 0x001 << 2 | 2
  EXPECT_EQ(packed("Mono14", {0xF3, 0x2A, 0x8C, 0x04, 0xB5, 0x3F, 0x06, 0x00}), wanted_);
}

TEST_F(PixelFormTest, TenBitsGetTwoZeros) {
  // 0x3FF, 0x001, 0x155, 0x000 become 0xFFC, 0x004, 0x554, 0x000.
  EXPECT_EQ(packed("Mono10", {0xFF, 0x03, 0x01, 0x00, 0x55, 0x01, 0x00, 0x00}),
            (Bytes{0xFF, 0x4C, 0x00, 0x55, 0x04, 0x00}));
}

TEST_F(PixelFormTest, Mono12pHasItsBytesInAnotherOrder) {
  // Low byte of the first, the high four bits of it below the low four of the second, high byte of
  // the second.
  EXPECT_EQ(packed("Mono12p", {0xBC, 0x3A, 0x12, 0xED, 0x1F, 0x00}), wanted_);
}

TEST_F(PixelFormTest, Mono12pIsPackedToItsLastPixel) {
  PixelPacker packer(*pixelForm("Mono12p"), 6, 4);
  const Bytes frame(36, 0x5A);
  Bytes record(16 + 36 + 1, 0);
  packer.pack(frame.data(), record.data());
  Bytes wanted(16 + 36 + 1, 0);
  for (std::size_t i = 16; i + 1 < wanted.size(); i += 3) {  // 0xA5A and 0x5A5
    wanted[i] = 0xA5;
    wanted[i + 1] = wanted[i + 2] = 0x5A;
  }
  EXPECT_EQ(record, wanted);
}

TEST_F(PixelFormTest, Mono12PackedIsWhatARecordHas) {
  const PixelForm* const form = pixelForm("Mono12Packed");
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(form->way, PixelForm::Way::kAsItIs);
  EXPECT_EQ(form->code, 17563654U);
  EXPECT_EQ(PixelPacker(*form, 256, 256).frameSize(), 98304U);
}

TEST_F(PixelFormTest, AFrameHasItsBytes) {
  EXPECT_EQ(PixelPacker(*pixelForm("Mono8"), 6, 4).frameSize(), 24U);
  EXPECT_EQ(PixelPacker(*pixelForm("Mono12"), 6, 4).frameSize(), 48U);
  EXPECT_EQ(PixelPacker(*pixelForm("Mono12p"), 6, 4).frameSize(), 36U);
}

TEST_F(PixelFormTest, CodesAreThoseOfTheNames) {
  EXPECT_EQ(pixelForm("Mono8")->code, 17301505U);
  EXPECT_EQ(pixelForm("Mono12")->code, 17825797U);
  EXPECT_EQ(pixelForm("Mono16")->code, 17825799U);
}

TEST_F(PixelFormTest, OthersCannotBeRecorded) {
  for (const char* const name : {"RGB8", "BayerRG8", "Mono10Packed", "Mono10p", "mono8", ""}) {
    EXPECT_EQ(pixelForm(name), nullptr) << name;
  }
}

TEST_F(PixelFormTest, TheLeastCostIsChosen) {
  EXPECT_STREQ(pixelFormFor(12, {"Mono8", "Mono16", "Mono12Packed", "Mono12"})->name,
               "Mono12Packed");
  EXPECT_STREQ(pixelFormFor(12, {"Mono10", "Mono16", "Mono12p"})->name, "Mono12p");
  EXPECT_STREQ(pixelFormFor(12, {"Mono10", "Mono16"})->name, "Mono16");
  EXPECT_STREQ(pixelFormFor(8, {"Mono12", "Mono8"})->name, "Mono8");
  EXPECT_EQ(pixelFormFor(8, {"Mono12", "RGB8"}), nullptr);
}

}  // namespace

#include "format/kpf_layout.h"

#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace {

using KPF_FORMAT::contiguous;
using KPF_FORMAT::Field;
using KPF_FORMAT::load;
using KPF_FORMAT::store;
using TEST_SUPPORT::Bytes;

TEST(Layout, NumbersAreStoredLowestByteFirst) {
  Bytes image(6, 0xEE);
  store(image.data(), {1, 4}, 0x01020304);
  EXPECT_EQ(image, (Bytes{0xEE, 4, 3, 2, 1, 0xEE}));
  EXPECT_EQ(load(image.data(), {1, 4}), 0x01020304U);
}

TEST(Layout, FieldKeepsTheLowBytesOfALargerNumber) {
  Bytes image(3, 0);
  store(image.data(), {0, 2}, 0x123456);
  EXPECT_EQ(image, (Bytes{0x56, 0x34, 0}));
}

TEST(Layout, EightBytesHoldAnyNumber) {
  Bytes image(8);
  store(image.data(), {0, 8}, 0xFEDCBA9876543210U);
  EXPECT_EQ(image, (Bytes{0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}));
  EXPECT_EQ(load(image.data(), {0, 8}), 0xFEDCBA9876543210U);
}

TEST(Layout, GapsAndOverlapsAreFound) {
  EXPECT_TRUE(contiguous({Field{0, 2}, Field{2, 3}}, 5));
  EXPECT_FALSE(contiguous({Field{0, 2}, Field{3, 2}}, 5)) << "a gap";
  EXPECT_FALSE(contiguous({Field{0, 2}, Field{1, 4}}, 5)) << "an overlap";
  EXPECT_FALSE(contiguous({Field{0, 2}, Field{2, 2}}, 5)) << "short of the whole";
  EXPECT_FALSE(contiguous({Field{1, 4}}, 5)) << "a gap at the start";
}

TEST(Layout, FilesHaveTheirSizes) {
  EXPECT_EQ(KPF_FORMAT::HEADER::kSize, 2998U);
  EXPECT_EQ(KPF_FORMAT::FRAME_HEADER::kSize, 16U);
}

}  // namespace

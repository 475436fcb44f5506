#include "tools/kpf/analysis/picture.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tools/kpf/analysis/mean_picture.h"

namespace {

using namespace KPF_TOOL;
using Levels = std::vector<float>;

constexpr PictureLayout kSmall{4, 3, Samples::k8Bit};
constexpr unsigned kHuge = std::numeric_limits<unsigned>::max();

std::vector<unsigned char> counted(unsigned bytes) {
  std::vector<unsigned char> frame;
  for (unsigned i = 0; i < bytes; ++i) frame.push_back(static_cast<unsigned char>(i));
  return frame;
}

TEST(Box, InsideMeansEveryPixel) {
  EXPECT_TRUE(isInside({0, 0, 4, 3}, kSmall));
  EXPECT_TRUE(isInside({3, 2, 1, 1}, kSmall));
  for (const Box& box : {Box{0, 0, 5, 1}, Box{0, 0, 1, 4}, Box{4, 0, 1, 1}, Box{0, 3, 1, 1},
                         Box{3, 0, 2, 1}, Box{0, 2, 1, 2}, Box{0, 0, 0, 1}, Box{0, 0, 1, 0},
                         Box{kHuge, 0, 2, 1}, Box{0, kHuge, 1, 2}, Box{2, 2, kHuge, kHuge}}) {
    EXPECT_FALSE(isInside(box, kSmall)) << box.x << ',' << box.y << ',' << box.width;
  }
}

TEST(Box, APointStandsForThePixelsAroundIt) {
  EXPECT_EQ(boxAround(50, 60, {100, 100}), (Box{43, 53, 15, 15}));
  EXPECT_EQ(boxAround(0, 99, {100, 100}), (Box{0, 92, 8, 8}));
  EXPECT_EQ(boxAround(1, 1, {4, 3}), (Box{0, 0, 4, 3}));
}

TEST(Levels, OfABoxOf8Bits) {
  const auto frame = counted(12);
  Levels levels(4);
  copyLevels(frame.data(), kSmall, {1, 1, 2, 2}, levels);
  EXPECT_EQ(levels, (Levels{5, 6, 9, 10}));
  EXPECT_EQ(meanLevel(frame.data(), kSmall, {1, 1, 2, 2}), 7.5);
}

TEST(Levels, Of16BitsKeepTheirFractions) {
  // 0x4080 and 0xFFF0, little-endian, in the second row.
  const std::vector<unsigned char> frame{1, 2, 3, 4, 0x80, 0x40, 0xF0, 0xFF};
  Levels levels(2);
  copyLevels(frame.data(), {2, 2, Samples::k16Bit}, {0, 1, 2, 1}, levels);
  EXPECT_EQ(levels, (Levels{64.5F, 255.9375F}));
}

TEST(MeanPicture, MeanAndVarianceOverTime) {
  MeanPicture mean({2, 1, Samples::k8Bit}, {0, 0, 2, 1});
  EXPECT_EQ(mean.variance(), 0);
  for (const int level : {10, 20}) {
    const unsigned char frame[] = {static_cast<unsigned char>(level), 7};
    mean.add(frame);
  }
  EXPECT_EQ(mean.levels(), (Levels{15, 7}));
  EXPECT_EQ(mean.variance(), 12.5);  // 25 and 0
  EXPECT_EQ(mean.frames(), 2U);
}

}  // namespace

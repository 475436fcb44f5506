#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "tests/motionampl/frames.h"
#include "tests/support/library_test.h"

namespace {

using namespace TEST_MOTIONAMPL;
using VLM_KPF::VxKPFMotionAmpl;

class Parameters : public TEST_SUPPORT::LibraryTest {
 protected:
  VxKPFMotionAmpl amplifier;
};

TEST_F(Parameters, NewAmplifierHasAWindowOfOneAndNoSums) {
  EXPECT_EQ(amplifier.ampFactor, 1.0);
  EXPECT_EQ(amplifier.refWindowSize, 1);
  EXPECT_EQ(amplifier.width, 0);
  EXPECT_EQ(amplifier.height, 0);
  EXPECT_TRUE(amplifier.frames.empty());
  EXPECT_EQ(amplifier.summer, nullptr);
  EXPECT_TRUE(amplifier.amplifyAvailable());
}

TEST_F(Parameters, WindowSpansThreeCycles) {
  struct Row {
    double frameRate;
    double motionFrequency;
    std::int32_t window;
  };
  constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
  const std::vector<Row> rows{
      {240.0, 7.5, 96},
      {30.0, 10.0, 9},
      {25.0, 20.0, 3},
      {29.97, 30.0, 1},
      {-60.0, 20.0, -9},
      {60.0, 0.0, kSmallest},
      {-60.0, 0.0, kSmallest},
      {0.0, 0.0, kSmallest},
      {1.0e9, 1.0, -1294967296},
      {2147483647.5, 1.0, 2147483645},
      {2147483648.0, 1.0, kSmallest},
      {-2147483648.5, 1.0, kSmallest},
      {-0.9, 1.0, 1},
  };
  for (const Row& row : rows) {
    amplifier.setParameters(row.frameRate, row.motionFrequency, 1, 1, 2.0);
    EXPECT_EQ(amplifier.refWindowSize, row.window) << row.frameRate << " / " << row.motionFrequency;
  }
}

TEST_F(Parameters, AreKeptUnchanged) {
  amplifier.setParameters(30.0, 10.0, 7, 5, -2.25);
  EXPECT_EQ(amplifier.width, 7);
  EXPECT_EQ(amplifier.height, 5);
  EXPECT_EQ(amplifier.ampFactor, -2.25);
  EXPECT_EQ(*amplifier.summer, std::vector<std::uint32_t>(35));
}

TEST_F(Parameters, SetAgainStartAnEmptyWindow) {
  amplifier.setParameters(25.0, 20.0, 2, 1, 3.0);
  add(amplifier, {10, 200});
  add(amplifier, {20, 100});
  ASSERT_TRUE(amplifier.amplifyAvailable());
  amplifier.setParameters(30.0, 10.0, 3, 1, 3.0);
  EXPECT_TRUE(amplifier.frames.empty());
  EXPECT_FALSE(amplifier.amplifyAvailable());
  EXPECT_EQ(*amplifier.summer, std::vector<std::uint32_t>(3));
}

TEST_F(Parameters, NegativeProductThrowsWithTheNewParametersAndTheOldFrames) {
  amplifier.setParameters(25.0, 20.0, 2, 1, 3.0);
  add(amplifier, {10, 200});
  try {
    amplifier.setParameters(30.0, 10.0, -1, 1, 5.0);
    FAIL() << "expected std::length_error";
  } catch (const std::length_error& error) {
    EXPECT_STREQ(error.what(), "cannot create std::vector larger than max_size()");
  }
  EXPECT_EQ(amplifier.refWindowSize, 9);
  EXPECT_EQ(amplifier.width, -1);
  EXPECT_EQ(amplifier.height, 1);
  EXPECT_EQ(amplifier.ampFactor, 5.0);
  EXPECT_EQ(amplifier.frames.size(), 1U);
  EXPECT_EQ(*amplifier.summer, (std::vector<std::uint32_t>{10, 200}));
}

TEST_F(Parameters, ProductThatWrapsToANegativeOneThrows) {
  EXPECT_THROW(amplifier.setParameters(30.0, 10.0, 65536, 32768, 1.0), std::length_error);
  EXPECT_EQ(amplifier.summer, nullptr);
}

TEST_F(Parameters, ResetEmptiesTheWindowAndKeepsItsSize) {
  amplifier.setParameters(25.0, 20.0, 2, 1, 3.0);
  add(amplifier, {10, 200});
  add(amplifier, {20, 100});
  amplifier.reset();
  EXPECT_TRUE(amplifier.frames.empty());
  EXPECT_EQ(*amplifier.summer, std::vector<std::uint32_t>(2));
  EXPECT_EQ(amplifier.refWindowSize, 3);
  EXPECT_FALSE(amplifier.amplifyAvailable());
}

TEST_F(Parameters, ResetPassesOverANullFrameAndMissingSums) {
  amplifier.frames.push_back(nullptr);
  amplifier.reset();
  EXPECT_TRUE(amplifier.frames.empty());
  EXPECT_EQ(amplifier.summer, nullptr);
}

TEST_F(Parameters, WithoutThemAFrameStaysTheCallers) {
  unsigned char* const frame = newFrame({1});
  amplifier.addFrame(frame);
  EXPECT_TRUE(amplifier.frames.empty());
  EXPECT_EQ(output(), "addFrame: unexpectedly null summer!\n");
  ::operator delete(frame);
}

TEST_F(Parameters, WithoutThemThereIsNeitherAReferenceNorAnAmplifiedFrame) {
  unsigned char untouched = 77;
  EXPECT_FALSE(amplifier.getReference(&untouched));
  EXPECT_EQ(output(), "");
  EXPECT_FALSE(amplifier.amplifyFrame(&untouched));
  EXPECT_EQ(output(), "amplifyFrame: Unable to get the reference frame!\n");
  EXPECT_EQ(untouched, 77);
}

}  // namespace

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/motionampl/frames.h"
#include "tests/support/library_test.h"

namespace {

using namespace TEST_MOTIONAMPL;
using VLM_KPF::VxKPFMotionAmpl;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class Amplification : public TEST_SUPPORT::LibraryTest {
 protected:
  VxKPFMotionAmpl amplifier;
};

TEST_F(Amplification, WindowOfThreeIsFollowedRowByRow) {
  struct Row {
    Samples frame;
    std::vector<std::uint32_t> sums;
    bool available;
    Samples reference;
    Samples amplified;
  };
  const std::vector<Row> rows{
      {{10, 200}, {10, 200}, false, {}, {}},
      {{20, 100}, {30, 300}, true, {10, 100}, {50, 100}},
      {{90, 50}, {110, 150}, true, {36, 50}, {252, 50}},
      {{30, 250}, {120, 300}, true, {40, 100}, {30, 255}},
  };
  amplifier.setParameters(25.0, 20.0, 2, 1, 3.0);
  for (const Row& row : rows) {
    add(amplifier, row.frame);
    EXPECT_EQ(*amplifier.summer, row.sums);
    EXPECT_EQ(amplifier.amplifyAvailable(), row.available);
    EXPECT_EQ(referenceOf(amplifier, 2), row.reference);
    EXPECT_EQ(amplifiedBy(amplifier, 2), row.amplified);
  }
  EXPECT_EQ(amplifier.frames.size(), 2U);
  EXPECT_EQ(output(), "amplifyFrame: Unable to get the reference frame!\n");
}

TEST_F(Amplification, FactorDecidesWhatADifferenceOf54Adds) {
  struct Row {
    double factor;
    unsigned char out;
  };
  const std::vector<Row> rows{
      {3.0, 252},       {2.5, 225}, {3.5, 255},   {5.0, 104},    {4.74, 255},
      {-1.0, 255},      {0.0, 90},  {1.0e12, 90}, {-1.0e12, 90}, {kInfinity, 90},
      {-kInfinity, 90}, {kNaN, 90}, {-4.0, 130},  {-0.01, 90},   {0.02, 91},
  };
  for (const Row& row : rows) {
    amplifier.setParameters(25.0, 20.0, 1, 1, row.factor);
    add(amplifier, {20});
    add(amplifier, {90});
    EXPECT_EQ(amplifiedBy(amplifier, 1), Samples{row.out}) << "factor " << row.factor;
  }
}

// A difference of one is the factor itself.
TEST_F(Amplification, ProductsAreTruncatedUpToTheBordersOf32Bits) {
  struct Row {
    double factor;
    unsigned char out;
  };
  const std::vector<Row> rows{
      {2147483647.5, 255}, {2147483648.0, 1},  {2147483393.0, 2},
      {-2147483647.5, 2},  {-2147483648.5, 1}, {-2147483904.0, 1},
  };
  for (const Row& row : rows) {
    amplifier.setParameters(25.0, 20.0, 1, 1, row.factor);
    add(amplifier, {0});
    add(amplifier, {1});
    EXPECT_EQ(amplifiedBy(amplifier, 1), Samples{row.out}) << std::to_string(row.factor);
  }
}

TEST_F(Amplification, ConstantSceneIsBrightenedByWhatTheReferenceLacks) {
  amplifier.setParameters(25.0, 20.0, 1, 1, 3.0);
  add(amplifier, {90});
  add(amplifier, {90});
  EXPECT_EQ(referenceOf(amplifier, 1), Samples{60});
  EXPECT_EQ(amplifiedBy(amplifier, 1), Samples{180});
}

// The picture in docs/api.md.
TEST_F(Amplification, StillSceneBrightensAndOnlyBrighteningCounts) {
  amplifier.setParameters(25.0, 5.0, 3, 1, 8.0);
  for (int i = 0; i < 13; ++i) add(amplifier, {120, 120, 120});
  add(amplifier, {120, 126, 110});
  EXPECT_EQ(referenceOf(amplifier, 3), (Samples{112, 112, 111}));
  EXPECT_EQ(amplifiedBy(amplifier, 3), (Samples{184, 238, 110}));
}

TEST_F(Amplification, WithoutAPositiveDifferenceTheFrameComesOutUnchanged) {
  amplifier.setParameters(25.0, 20.0, 2, 1, 3.0);
  add(amplifier, {200, 200});
  add(amplifier, {99, 100});
  EXPECT_EQ(referenceOf(amplifier, 2), (Samples{99, 100}));
  EXPECT_EQ(amplifiedBy(amplifier, 2), (Samples{99, 100}));
}

TEST_F(Amplification, WindowOfOneHoldsOneFrameThatIsItsOwnReference) {
  amplifier.setParameters(29.97, 30.0, 2, 1, 3.0);
  EXPECT_TRUE(amplifier.amplifyAvailable());
  add(amplifier, {1, 2});
  add(amplifier, {7, 255});
  EXPECT_EQ(amplifier.frames.size(), 1U);
  EXPECT_EQ(referenceOf(amplifier, 2), (Samples{7, 255}));
  EXPECT_EQ(amplifiedBy(amplifier, 2), (Samples{7, 255}));
}

TEST_F(Amplification, WindowOfOneWithoutAFrameHasAReferenceButNothingToAmplify) {
  amplifier.setParameters(29.97, 30.0, 2, 1, 3.0);
  EXPECT_EQ(referenceOf(amplifier, 2), (Samples{0, 0}));
  EXPECT_EQ(amplifiedBy(amplifier, 2), Samples{});
  EXPECT_EQ(output(), "amplifyFrame: Unable to get the reference frame!\n");
}

TEST_F(Amplification, WindowThatNeverFillsDeliversNothing) {
  amplifier.setParameters(-60.0, 20.0, 1, 1, 3.0);
  for (unsigned char value = 0; value < 20; ++value) add(amplifier, {value});
  EXPECT_EQ(amplifier.frames.size(), 20U);
  EXPECT_EQ(*amplifier.summer, std::vector<std::uint32_t>{190});
  EXPECT_FALSE(amplifier.amplifyAvailable());
  EXPECT_EQ(referenceOf(amplifier, 1), Samples{});
  EXPECT_EQ(output(), "");
  EXPECT_EQ(amplifiedBy(amplifier, 1), Samples{});
  EXPECT_EQ(output(), "amplifyFrame: Unable to get the reference frame!\n");
}

TEST_F(Amplification, FramesOfNoSamplesAreDeliveredOnceTheWindowIsFull) {
  amplifier.setParameters(25.0, 20.0, 0, 480, 3.0);
  unsigned char untouched = 77;
  add(amplifier, {});
  EXPECT_FALSE(amplifier.amplifyFrame(&untouched));
  add(amplifier, {});
  EXPECT_TRUE(amplifier.getReference(&untouched));
  EXPECT_TRUE(amplifier.amplifyFrame(&untouched));
  EXPECT_EQ(untouched, 77);
}

TEST_F(Amplification, SamplesAreCountedInAProductThatWraps) {
  amplifier.setParameters(25.0, 20.0, 65536, 65537, 3.0);
  EXPECT_EQ(amplifier.summer->size(), 65536U);
  add(amplifier, Samples(65536, 90));
  add(amplifier, Samples(65536, 90));
  EXPECT_EQ(amplifiedBy(amplifier, 65536), Samples(65536, 180));
}

TEST_F(Amplification, DifferenceStopsAtZeroAndSumAt255) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const auto x = static_cast<unsigned char>(a);
      const auto y = static_cast<unsigned char>(b);
      ASSERT_EQ(VxKPFMotionAmpl::minus_floor(x, y), a > b ? a - b : 0);
      ASSERT_EQ(VxKPFMotionAmpl::plus_clip(x, y), a + b < 255 ? a + b : 255);
    }
  }
}

}  // namespace

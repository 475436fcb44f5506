#include "tools/kpf/frames/amplifier.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using KPF_TOOL::Amplifier;
using Frame = std::vector<unsigned char>;

/// 25 frames/s at 12 Hz: two frames a cycle, a window of six, 3 x 2 pixels.
class SixFrames : public testing::Test {
 protected:
  /// A frame of one grey level.
  static Frame grey(unsigned char level) { return Frame(6, level); }

  Amplifier amplifier_{{25, 12, 3, 2, 2.5}};
};

TEST_F(SixFrames, FourFramesFillTheWindow) { EXPECT_EQ(amplifier_.fillingFrames(), 4U); }

TEST_F(SixFrames, WhileTheWindowFillsFramesPassUnchanged) {
  for (unsigned char n = 1; n <= 4; ++n) {
    amplifier_.add(grey(n));
    EXPECT_EQ(amplifier_.amplified(), grey(n));
    EXPECT_EQ(amplifier_.reference(), grey(n));
  }
}

TEST_F(SixFrames, TheFifthFrameIsAmplified) {
  for (int n = 0; n < 4; ++n) amplifier_.add(grey(60));
  amplifier_.add(grey(90));
  // (4 x 60 + 90) / 6 = 55, and 90 + (90 - 55) x 2.5 = 177.5.
  EXPECT_EQ(amplifier_.reference(), grey(55));
  EXPECT_EQ(amplifier_.amplified(), grey(177));
}

TEST_F(SixFrames, TheOldestFrameLeavesTheWindow) {
  amplifier_.add(grey(250));
  for (int n = 0; n < 5; ++n) amplifier_.add(grey(60));
  EXPECT_EQ(amplifier_.reference(), grey(50));  // 5 x 60 / 6: the first one is forgotten
}

TEST_F(SixFrames, EachPixelHasItsOwnReference) {
  for (int n = 0; n < 5; ++n) amplifier_.add({6, 12, 18, 24, 30, 36});
  EXPECT_EQ(amplifier_.reference(), (Frame{5, 10, 15, 20, 25, 30}));
  // Differences of 1 to 6, times 2.5, cut to whole numbers: 2, 5, 7, 10, 12, 15.
  EXPECT_EQ(amplifier_.amplified(), (Frame{8, 17, 25, 34, 42, 51}));
}

TEST_F(SixFrames, FramesStayTheCallers) {
  Frame frame = grey(60);
  amplifier_.add(frame);
  frame.assign(6, 200);
  for (int n = 0; n < 4; ++n) amplifier_.add(grey(60));
  EXPECT_EQ(amplifier_.reference(), grey(50));
}

TEST(AmplifierOfOneCycle, TwoOfThemDoNotDisturbEachOther) {
  Amplifier one({25, 12, 2, 1, 1}), two({25, 12, 2, 1, 1});
  for (int n = 0; n < 5; ++n) {
    one.add({60, 60});
    two.add({120, 120});
  }
  EXPECT_EQ(one.reference(), (Frame{50, 50}));
  EXPECT_EQ(two.reference(), (Frame{100, 100}));
}

}  // namespace

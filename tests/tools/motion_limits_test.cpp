#include "tools/kpf/frames/motion_limits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace KPF_TOOL;
using testing::HasSubstr;
using Frame = std::vector<unsigned char>;

TEST(TooFewFrames, IsNoMatterWhereThereAreEnough) {
  EXPECT_FALSE(tooFewFrames(25, 5, 5));
  EXPECT_FALSE(tooFewFrames(25, 5, 6));
  EXPECT_TRUE(tooFewFrames(25, 5, 4));
}

TEST(TooFewFrames, TellsBothNumbersAndWhatWouldFit) {
  const auto answer = tooFewFrames(25, 74, 30);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->problem, "the window needs 74 frames, and there are 30");
  EXPECT_EQ(answer->advice, "Choose a --frequency from 2.5 to 12.5, or a longer clip.");
  EXPECT_THAT(tooFewFrames(25, 74, 5)->advice, HasSubstr("of 12.5,"));
  EXPECT_THAT(tooFewFrames(25, 74, 1)->problem, HasSubstr("there is 1"));
  EXPECT_EQ(tooFewFrames(25, 74, 4)->advice, "Give a clip of at least 5 frames.");
}

TEST(Wrapping, IsSaidAboveOnePixelInAHundred) {
  const Frame reference(200, 100);
  Frame frame(200, 100);
  Wrapping wrapping(2);
  frame[0] = frame[1] = 228;  // a difference of 128 becomes 256
  wrapping.add(frame, reference);
  EXPECT_EQ(wrapping.remark(), "");
  frame[2] = 228;
  wrapping.add(frame, reference);
  EXPECT_EQ(wrapping.remark(),
            "1.2 % of the pixels wrap at a gain of 2, and are dark where they should be bright; "
            "with --gain 1.9 none would");
}

TEST(Wrapping, BeginsWhereTheProductLeavesASample) {
  for (const int difference : {127, 128}) {
    Wrapping wrapping(2);
    wrapping.add(Frame(4, static_cast<unsigned char>(difference)), Frame(4, 0));
    EXPECT_EQ(wrapping.remark().empty(), difference == 127) << difference;
  }
}

TEST(Wrapping, TakesDarkeningForNothing) {
  Wrapping wrapping(255);
  wrapping.add(Frame(4, 0), Frame(4, 255));
  EXPECT_EQ(wrapping.remark(), "");
  Wrapping still(0);
  still.add(Frame(4, 255), Frame(4, 0));
  EXPECT_EQ(still.remark(), "");
}

}  // namespace

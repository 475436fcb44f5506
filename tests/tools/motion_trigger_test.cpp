#include "tools/kpf/recording/motion_trigger.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/library_test.h"

namespace {

using namespace KPF_TOOL;

class MotionTriggerTest : public TEST_SUPPORT::LibraryTest {
 protected:
  /// Shows frames of 4 x 2 pixels of one level until the window is full. @return whether it fired.
  static bool fill(MotionTrigger& trigger, unsigned char level) {
    const std::vector<unsigned char> frame(8, level);
    bool fired = false;
    for (int i = 0; i < MotionTrigger::kWindow + 5; ++i) {
      fired = trigger.fires(frame.data()) || fired;
    }
    return fired;
  }
};

TEST_F(MotionTriggerTest, AStillSceneIsBrighterByAThirtieth) {
  MotionTrigger trigger(5, 4, 2, false);
  EXPECT_FALSE(fill(trigger, 90));
  EXPECT_DOUBLE_EQ(trigger.level(), 3);
}

TEST_F(MotionTriggerTest, TheMeanOfWhatIsBrighterDecides) {
  MotionTrigger trigger(14.9, 4, 2, false);
  fill(trigger, 30);
  // What is darker does not count against what is brighter. The newest frame is in the reference
  // too: (28 * 30 + v) / 30.
  const std::vector<unsigned char> frame = {90, 90, 0, 29, 29, 29, 29, 29};
  EXPECT_TRUE(trigger.fires(frame.data()));
  // References: (840 + 90) / 30 = 31, and 28 for 0 and 29: 59 + 59 + 0 + 5 * 1 over 8.
  EXPECT_DOUBLE_EQ(trigger.level(), (59 + 59 + 5 * 1) / 8.0);
}

TEST_F(MotionTriggerTest, NothingFiresWhileTheWindowFills) {
  MotionTrigger trigger(0, 4, 2, false);
  const std::vector<unsigned char> frame(8, 200);
  for (int i = 0; i < MotionTrigger::kWindow - 2; ++i) {
    EXPECT_FALSE(trigger.fires(frame.data())) << i;
  }
  EXPECT_TRUE(trigger.fires(frame.data()));
}

TEST_F(MotionTriggerTest, ArmedAnewItForgets) {
  MotionTrigger trigger(20, 4, 2, false);
  fill(trigger, 10);
  trigger.arm();
  const std::vector<unsigned char> bright(8, 250);
  EXPECT_FALSE(trigger.fires(bright.data()));
}

TEST_F(MotionTriggerTest, OfPackedPixelsTheUpperBitsAreCompared) {
  MotionTrigger trigger(5, 4, 2, true);
  std::vector<unsigned char> frame;
  for (int i = 0; i < 4; ++i) frame.insert(frame.end(), {90, 0xFF, 90});
  for (int i = 0; i < MotionTrigger::kWindow; ++i) trigger.fires(frame.data());
  EXPECT_DOUBLE_EQ(trigger.level(), 3);
}

TEST_F(MotionTriggerTest, WithoutAFrameNothingMoves) {
  MotionTrigger trigger(0, 4, 2, false);
  EXPECT_FALSE(trigger.fires(nullptr));
}

}  // namespace

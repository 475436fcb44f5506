#include "tools/kpf/analysis/waveform.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using KPF_TOOL::Waveform;
using Values = std::vector<double>;

TEST(Waveform, AGapIsBridgedByAStraightLine) {
  Waveform waveform(10);
  waveform.add(2);
  waveform.addLost();
  waveform.addLost();
  waveform.add(8);
  EXPECT_EQ(waveform.values(), (Values{2, 4, 6, 8}));
  EXPECT_EQ(waveform.lost(), (std::vector<bool>{false, true, true, false}));
  EXPECT_EQ(waveform.lostFrames(), 2U);
}

TEST(Waveform, AtEitherEndTheNearestValueHolds) {
  Waveform waveform(10);
  waveform.addLost();
  waveform.addLost();
  waveform.add(5);
  waveform.add(7);
  waveform.addLost();
  EXPECT_EQ(waveform.values(), (Values{5, 5, 5, 7, 7}));
}

TEST(Waveform, GapsDoNotReachIntoOneAnother) {
  Waveform waveform(10);
  for (const double value : {0., 4., 0.}) {
    waveform.add(value);
    waveform.addLost();
  }
  EXPECT_EQ(waveform.values(), (Values{0, 2, 4, 2, 0, 0}));
  EXPECT_EQ(waveform.lostFrames(), 3U);
}

TEST(Waveform, OfLostFramesAloneIsZero) {
  Waveform waveform(10);
  waveform.addLost();
  EXPECT_EQ(waveform.values(), Values{0});
  EXPECT_EQ(waveform.mean(), 0);
}

TEST(Waveform, MeanIsThatOfAllValues) {
  Waveform waveform(10);
  EXPECT_EQ(waveform.mean(), 0);
  for (const double value : {1., 2., 6.}) waveform.add(value);
  EXPECT_EQ(waveform.mean(), 3);
}

}  // namespace

#include "tools/kpf/recording/timeline.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace {

using KPF_TOOL::Timeline;

using Times = std::vector<std::optional<double>>;
using Places = std::vector<std::uint64_t>;

Places placesOf(bool fillGaps, double rate, const Times& times) {
  Timeline timeline(fillGaps, rate);
  Places places;
  for (const auto& time : times) places.push_back(timeline.placeOf(time));
  return places;
}

TEST(Timeline, WithoutFillingFramesFollowEachOther) {
  EXPECT_EQ(placesOf(false, 25, {0.0, 5.0, 1.0, std::nullopt}), (Places{0, 1, 2, 3}));
}

TEST(Timeline, FramesInStepHaveTheirNumbers) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 0.04, 0.08, 0.12}), (Places{0, 1, 2, 3}));
}

TEST(Timeline, AGapLeavesPlacesFree) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 0.04, 0.16, 0.2}), (Places{0, 1, 4, 5}));
}

TEST(Timeline, TheFirstFrameIsAtPlaceZero) {
  EXPECT_EQ(placesOf(true, 10, {100.0, 100.1, 100.5}), (Places{0, 1, 5}));
  EXPECT_EQ(placesOf(true, 10, {-3.0, -2.9, -2.5}), (Places{0, 1, 5}));
}

TEST(Timeline, TimesAreRoundedToTheNearestFrame) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 0.05, 0.109}), (Places{0, 1, 3}));
}

TEST(Timeline, RoundingDoesNotAddUp) {
  // 29.97 frames/s recorded at 30: a frame falls behind in 33 seconds, and one place stays free.
  Timeline timeline(true, 30);
  std::uint64_t place = 0;
  for (int n = 0; n <= 1000; ++n) place = timeline.placeOf(n * 1001.0 / 30000.0);
  EXPECT_EQ(place, 1001U);
}

TEST(Timeline, NeverTwoFramesAtOnePlace) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 0.001, 0.002, 0.5}), (Places{0, 1, 2, 13}));
}

TEST(Timeline, NeverBackwards) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 0.4, 0.04, -9.0}), (Places{0, 10, 11, 12}));
}

TEST(Timeline, FramesWithoutATimeFollowTheOneBefore) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 0.2, std::nullopt, 0.4}), (Places{0, 5, 6, 10}));
}

TEST(Timeline, TheFirstTimeMayComeLate) {
  EXPECT_EQ(placesOf(true, 25, {std::nullopt, std::nullopt, 8.0, 8.12}), (Places{0, 1, 2, 5}));
}

TEST(Timeline, ATimeBeyondAllReasonStaysANumber) {
  EXPECT_EQ(placesOf(true, 25, {0.0, 1e300, 1e300}),
            (Places{0, 1000000000000000, 1000000000000001}));
}

/// Whether frames of these times stand where they belong.
bool keepsTime(bool fillGaps, double rate, const Times& times, double inputRate = 0) {
  Timeline timeline(fillGaps, rate, inputRate);
  for (const auto& time : times) timeline.placeOf(time);
  return timeline.keepsTime();
}

TEST(TimelineTimes, AGapThatIsNotFilledMovesFrames) {
  EXPECT_TRUE(keepsTime(false, 25, {0.0, 0.04, 0.08}));
  EXPECT_FALSE(keepsTime(false, 25, {0.0, 0.04, 0.12}));
  EXPECT_TRUE(keepsTime(true, 25, {0.0, 0.04, 0.12}));
}

TEST(TimelineTimes, FramesCloserThanTheRateAreMoved) {
  EXPECT_FALSE(keepsTime(false, 25, {0.0, 0.02, 0.04}));
  EXPECT_FALSE(keepsTime(true, 25, {0.0, 0.02, 0.04}));
}

TEST(TimelineTimes, FramesThatGoBackAreMoved) {
  EXPECT_FALSE(keepsTime(false, 25, {0.0, 0.04, 0.0}));
}

TEST(TimelineTimes, AnotherRateIsTheUsersWish) {
  EXPECT_TRUE(keepsTime(false, 100, {0.0, 0.04, 0.08}, 25));
  EXPECT_FALSE(keepsTime(false, 100, {0.0, 0.04, 0.12}, 25));
  EXPECT_FALSE(keepsTime(true, 10, {0.0, 0.04, 0.08}, 25));
}

TEST(TimelineTimes, MillisecondsAreFineEnough) {
  Times times;
  for (int pair = 0; pair < 50; ++pair) times.insert(times.end(), 2, pair * 0.001);
  EXPECT_TRUE(keepsTime(false, 2000, times));
  for (auto& time : times) *time *= 3;
  EXPECT_FALSE(keepsTime(false, 2000, times));
}

TEST(TimelineTimes, UnsteadyHandsMoveNothing) {
  EXPECT_TRUE(keepsTime(false, 10, {0.0, 0.17, 0.13, 0.3}));
}

TEST(TimelineTimes, ClocksMayDiffer) {
  Times times;
  for (int frame = 0; frame < 100000; ++frame) times.push_back(frame * 0.0100005);
  EXPECT_TRUE(keepsTime(false, 100, times));
  for (auto& time : times) *time *= 1.001;
  EXPECT_FALSE(keepsTime(false, 100, times));
}

TEST(TimelineTimes, SaysHowLongItBecame) {
  Timeline closed(false, 100, 25);
  Timeline filled(true, 50);
  for (const double time : {5.0, 5.04, 5.2}) {
    closed.placeOf(time);
    filled.placeOf(time);
  }
  EXPECT_NEAR(closed.inputSeconds(), 0.24, 1e-9);
  EXPECT_NEAR(closed.placedSeconds(), 0.12, 1e-9);
  EXPECT_NEAR(filled.inputSeconds(), 0.22, 1e-9);
  EXPECT_NEAR(filled.placedSeconds(), 0.22, 1e-9);
}

}  // namespace

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

}  // namespace

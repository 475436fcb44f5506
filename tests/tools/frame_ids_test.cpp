#include "tools/kpf/recording/frame_ids.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace {

using namespace KPF_TOOL;
using Places = std::vector<std::optional<std::uint64_t>>;

Places placesOf(const std::vector<std::uint64_t>& ids) {
  FrameIds counter;
  Places places;
  for (const std::uint64_t id : ids) places.push_back(counter.placeOf(id));
  return places;
}

TEST(FrameIdsTest, TheFirstIdIsPlaceZero) {
  EXPECT_EQ(placesOf({65401, 65402}), (Places{0, 1}));
  EXPECT_EQ(placesOf({0, 1, 2}), (Places{0, 1, 2}));
}

TEST(FrameIdsTest, SkippedIdsLeaveTheirPlaces) {
  EXPECT_EQ(placesOf({1, 2, 5, 6}), (Places{0, 1, 4, 5}));
}

TEST(FrameIdsTest, ZeroIsLeftOutWhereSixteenBitsBeginAgain) {
  EXPECT_EQ(placesOf({65534, 65535, 1, 2}), (Places{0, 1, 2, 3}));
}

TEST(FrameIdsTest, AGapMayReachOverTheNewBeginning) {
  EXPECT_EQ(placesOf({65530, 3}), (Places{0, 8}));
}

TEST(FrameIdsTest, IdsOfMoreBitsGoOn) {
  EXPECT_EQ(placesOf({65534, 65535, 65536, 65540}), (Places{0, 1, 2, 6}));
  EXPECT_EQ(placesOf({0xFFFFFFFFFF, 0x10000000002}), (Places{0, 3}));
}

TEST(FrameIdsTest, AFrameBehindItsSuccessorHasNoPlace) {
  EXPECT_EQ(placesOf({10, 12, 11, 13}), (Places{0, 2, std::nullopt, 3}));
  EXPECT_EQ(placesOf({65535, 1, 65535, 2}), (Places{0, 1, std::nullopt, 2}));
  EXPECT_EQ(placesOf({100000, 100002, 100001}), (Places{0, 2, std::nullopt}));
}

TEST(FrameIdsTest, TheSameIdTwiceIsNoNewFrame) {
  EXPECT_EQ(placesOf({7, 7, 8}), (Places{0, std::nullopt, 1}));
}

TEST(FrameIdsTest, ALongSilenceTellsHowOftenIdsBeganAgain) {
  FrameIds counter;
  counter.placeOf(100);
  EXPECT_EQ(counter.placeOf(90, 65525), 65525U);
  EXPECT_EQ(counter.placeOf(91, 2 * 65535.0 - 300), 65525U + 2 * 65535 + 1);
}

TEST(FrameIdsTest, ALongGapIsBelievedWhenTimeHasPassed) {
  FrameIds counter;
  counter.placeOf(1);
  EXPECT_EQ(counter.placeOf(40001, 40010), 40000U);
}

TEST(FrameIdsTest, AnAbsurdClockHasItsLimits) {
  FrameIds counter;
  counter.placeOf(1);
  EXPECT_EQ(counter.placeOf(2, -1e300), 1U);
  const auto place = counter.placeOf(3, 1e300);
  ASSERT_TRUE(place.has_value());
  EXPECT_LT(*place, 2000000000000U);
}

}  // namespace

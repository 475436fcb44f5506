#include "tools/kpf/recording/call_times.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>

namespace {

using KPF_TOOL::CallTimes;
using std::chrono::nanoseconds;

TEST(CallTimes, WithoutCallsThereIsNothingToTell) {
  const CallTimes times;
  EXPECT_EQ(times.within(0.999), nanoseconds{0});
  EXPECT_EQ(times.longest(), nanoseconds{0});
}

TEST(CallTimes, TheShareIsCountedFromTheShortest) {
  CallTimes times;
  for (int i = 1; i <= 60; ++i) times.add(nanoseconds{61 - i});
  EXPECT_EQ(times.within(0.5), nanoseconds{30});
  EXPECT_EQ(times.within(0.501), nanoseconds{31});
  EXPECT_EQ(times.within(1), nanoseconds{60});
  EXPECT_EQ(times.longest(), nanoseconds{60});
}

TEST(CallTimes, OneInAThousandMayTakeLonger) {
  CallTimes times;
  for (int i = 0; i < 999; ++i) times.add(nanoseconds{10});
  times.add(nanoseconds{5000000});
  EXPECT_EQ(times.within(0.999), nanoseconds{10});
  times.add(nanoseconds{5000000});
  EXPECT_GT(times.within(0.999), nanoseconds{4800000});
  EXPECT_EQ(times.longest(), nanoseconds{5000000});
}

TEST(CallTimes, LongOnesAreRoundedUpByAThirtySecondPart) {
  for (const std::int64_t duration : {63L, 64L, 65L, 127L, 128L, 1000L, 4095L, 4096L, 123456789L}) {
    CallTimes times;
    times.add(nanoseconds{duration});
    times.add(nanoseconds{1000000000});
    EXPECT_GE(times.within(0.5).count(), duration);
    EXPECT_LE(times.within(0.5).count(), duration + duration / 32) << duration;
  }
}

TEST(CallTimes, NoneIsMoreThanTheLongest) {
  CallTimes times;
  times.add(nanoseconds{1000});
  EXPECT_EQ(times.within(0.999), nanoseconds{1000});
}

TEST(CallTimes, HoldsWhateverAClockGives) {
  CallTimes times;
  times.add(nanoseconds{-5});
  EXPECT_EQ(times.longest(), nanoseconds{0});
  times.add(nanoseconds{std::numeric_limits<std::int64_t>::max()});
  EXPECT_EQ(times.within(0.5), nanoseconds{0});
  EXPECT_EQ(times.within(1).count(), std::numeric_limits<std::int64_t>::max());
}

}  // namespace

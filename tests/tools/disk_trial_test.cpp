#include "tools/kpf/recording/disk_trial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using KPF_TOOL::DiskSpeed;
using KPF_TOOL::Leg;
using KPF_TOOL::LegPlan;
using KPF_TOOL::runLeg;
using KPF_TOOL::searchSpeed;

/// Time passes where the test says so.
class ScriptedClock : public KPF_TOOL::TrialClock {
 public:
  double now() override { return time; }
  void waitUntil(double until) override { time = std::max(time, until); }
  double time = 100;
};

constexpr std::uint64_t kMany = 1000000;

class RunLeg : public testing::Test {
 protected:
  /// A leg whose calls take so long, and then `usual`.
  Leg run(const LegPlan& plan, std::vector<double> calls, double usual) {
    std::size_t n = 0;
    return runLeg(
        clock_, plan, [&] { clock_.time += n < calls.size() ? calls[n++] : usual; },
        [this] { return stopAfter_-- == 0; });
  }

  ScriptedClock clock_;
  std::uint64_t stopAfter_ = kMany;
};

TEST_F(RunLeg, AsFastAsItGoesTellsTheRate) {
  const Leg leg = run({0, 2, kMany}, {}, 0.25);
  EXPECT_EQ(leg.frames, 8U);
  EXPECT_DOUBLE_EQ(leg.seconds, 2);
  EXPECT_DOUBLE_EQ(leg.rate, 4);
  EXPECT_DOUBLE_EQ(leg.worstCall, 0.25);
  EXPECT_TRUE(leg.holds());
}

TEST_F(RunLeg, FramesComeWhenTheyAreDue) {
  const Leg leg = run({4, 2, kMany}, {}, 0.125);
  EXPECT_EQ(leg.frames, 8U);
  EXPECT_DOUBLE_EQ(leg.seconds, 1.75 + 0.125);
  EXPECT_DOUBLE_EQ(leg.latest, 0.125);
  EXPECT_DOUBLE_EQ(leg.rate, 4);
  EXPECT_TRUE(leg.holds());
}

TEST_F(RunLeg, AFrameTimeIsNotLateMoreIs) {
  EXPECT_EQ(run({4, 2, 1}, {0.25}, 0).late, 0U);
  EXPECT_EQ(run({4, 2, 1}, {0.251}, 0).late, 1U);
}

TEST_F(RunLeg, AStallMakesTheNextFramesLateToo) {
  const Leg leg =
      run({4, 10, 8}, {0, 1.0}, 0.0625);  // the second is due after 0.25 s, done at 1.25
  EXPECT_EQ(leg.late, 4U);                // due at 0.25, 0.5, 0.75 and 1.0
  EXPECT_DOUBLE_EQ(leg.latest, 1.0);
  EXPECT_DOUBLE_EQ(leg.worstCall, 1.0);
  EXPECT_FALSE(leg.holds());
}

TEST_F(RunLeg, EndsWhereTheRoomEnds) { EXPECT_EQ(run({4, 10, 3}, {}, 0).frames, 3U); }

TEST_F(RunLeg, EndsWhenSomebodyWishes) {
  stopAfter_ = 5;
  const Leg leg = run({4, 10, kMany}, {}, 0);
  EXPECT_EQ(leg.frames, 5U);
  EXPECT_TRUE(leg.cutShort);
  EXPECT_FALSE(leg.holds());
}

/// A disk that reaches one rate and holds another.
class Disk {
 public:
  Leg operator()(double rate, double seconds) {
    asked.push_back({rate, seconds, 0});
    Leg leg;
    leg.rate = rate == 0 ? reaches : rate;
    leg.frames = static_cast<std::uint64_t>(leg.rate * seconds);
    leg.seconds = seconds;
    leg.late = rate > (seconds >= longLeg ? holdsLong : holds) ? 1 : 0;
    leg.cutShort = asked.size() == cutShortAt;
    return leg;
  }

  DiskSpeed search(double seconds) {
    return searchSpeed(seconds,
                       [this](double rate, double length) { return (*this)(rate, length); });
  }

  double reaches = 1000;
  double holds = 1000;
  double holdsLong = 1000;  // in legs that are not short
  double longLeg = 10;      // seconds
  std::size_t cutShortAt = 0;
  std::vector<LegPlan> asked;
};

TEST(SearchSpeed, FindsARateThatHoldsNearTheHighest) {
  for (const double holds : {330.0, 610.0, 790.0, 810.0, 960.0}) {
    Disk disk;
    disk.holds = disk.holdsLong = holds;
    const DiskSpeed speed = disk.search(20);
    EXPECT_DOUBLE_EQ(speed.fastest.rate, 1000);
    EXPECT_LE(speed.held.rate, holds);
    EXPECT_GE(speed.held.rate, 0.6 * holds) << holds;
    EXPECT_EQ(speed.held.late, 0U);
  }
}

TEST(SearchSpeed, TheAnswerIsFromALongLeg) {
  Disk disk;
  const DiskSpeed speed = disk.search(20);
  EXPECT_DOUBLE_EQ(speed.held.seconds, 10);
  double all = 0;
  for (const LegPlan& leg : disk.asked) all += leg.seconds;
  EXPECT_DOUBLE_EQ(all, 20);
}

TEST(SearchSpeed, ADiskThatTiresIsAskedForLess) {
  Disk disk;
  disk.holdsLong = 500;
  const DiskSpeed speed = disk.search(20);
  EXPECT_LE(speed.held.rate, 500);
  EXPECT_GE(speed.held.rate, 400);
  EXPECT_DOUBLE_EQ(speed.held.seconds, 10);
}

TEST(SearchSpeed, SomeDisksHoldNothing) {
  Disk disk;
  disk.holds = disk.holdsLong = 0;
  EXPECT_EQ(disk.search(20).held.frames, 0U);
}

TEST(SearchSpeed, RatesAreWholeNumbersUnlessTheyAreSmall) {
  Disk disk;
  disk.reaches = 99.5;
  disk.search(20);
  EXPECT_DOUBLE_EQ(disk.asked[1].rate, 79);
  disk = Disk();
  disk.reaches = 0.5;
  disk.search(20);
  EXPECT_DOUBLE_EQ(disk.asked[1].rate, 0.4);
}

TEST(SearchSpeed, StopsAtOnceWhenALegIsCutShort) {
  for (const std::size_t at : {1U, 3U, 5U}) {
    Disk disk;
    disk.cutShortAt = at;
    EXPECT_TRUE(disk.search(20).cutShort);
    EXPECT_EQ(disk.asked.size(), at);
  }
}

}  // namespace

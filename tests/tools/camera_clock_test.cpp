#include "tools/kpf/recording/camera_clock.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace KPF_TOOL;

constexpr std::uint64_t kStart = 1700000000000000000;  // nanoseconds since 1970
constexpr std::uint64_t kMillisecond = 1000000;

LiveFrame frameAt(std::uint64_t cameraTime, std::uint64_t arrival) {
  LiveFrame frame;
  frame.cameraTime = cameraTime;
  frame.arrival = arrival;
  return frame;
}

TEST(CameraClockTest, TheCamerasStepsCountFromTheSystemsTime) {
  CameraClock clock(ClockKind::kCamera, 100);
  EXPECT_EQ(clock.timeOf(0, frameAt(5000, kStart)), kStart);
  EXPECT_EQ(clock.timeOf(1, frameAt(5000 + 10 * kMillisecond, kStart + 25 * kMillisecond)),
            kStart + 10 * kMillisecond);
}

TEST(CameraClockTest, TheSystemsClockTakesArrivals) {
  CameraClock clock(ClockKind::kSystem, 100);
  EXPECT_EQ(clock.timeOf(0, frameAt(5000, kStart)), kStart);
  EXPECT_EQ(clock.timeOf(1, frameAt(5001, kStart + 25)), kStart + 25);
  EXPECT_EQ(clock.timeOf(2, frameAt(5002, kStart + 24)), kStart + 25);  // set back meanwhile
}

TEST(CameraClockTest, TheRateMakesEvenSteps) {
  CameraClock clock(ClockKind::kRate, 100);
  EXPECT_EQ(clock.timeOf(0, frameAt(0, kStart)), kStart);
  EXPECT_EQ(clock.timeOf(250, frameAt(0, kStart + 7)), kStart + 2500 * kMillisecond);
}

TEST(CameraClockTest, WithoutACamerasClockTheSystemsIsTaken) {
  CameraClock clock(ClockKind::kCamera, 100);
  clock.timeOf(0, frameAt(0, kStart));
  EXPECT_EQ(clock.timeOf(1, frameAt(0, kStart + 9)), kStart + 9);
  EXPECT_TRUE(clock.isMissing());
}

TEST(CameraClockTest, ACameraClockThatIsSetBackIsAnchoredAnew) {
  CameraClock clock(ClockKind::kCamera, 100);
  clock.timeOf(0, frameAt(9000000000, kStart));
  EXPECT_EQ(clock.timeOf(1, frameAt(500, kStart + 10 * kMillisecond)), kStart + 10 * kMillisecond);
  EXPECT_EQ(clock.timeOf(2, frameAt(500 + kMillisecond, kStart + 19 * kMillisecond)),
            kStart + 11 * kMillisecond);
  EXPECT_EQ(clock.resets(), 1U);
}

TEST(CameraClockTest, TimesNeverGoBackwards) {
  CameraClock clock(ClockKind::kCamera, 100);
  clock.timeOf(0, frameAt(1000, kStart));
  clock.timeOf(1, frameAt(1000 + 50 * kMillisecond, kStart + 5 * kMillisecond));
  EXPECT_EQ(clock.timeOf(2, frameAt(10, kStart + 6 * kMillisecond)), kStart + 50 * kMillisecond);
}

TEST(CameraClockTest, WhatTheCamerasClockLosesIsTold) {
  CameraClock clock(ClockKind::kCamera, 100);
  // The camera's clock says 9.99 ms for each 10; every other frame is held up on its way.
  for (std::uint64_t i = 0; i < 320; ++i) {
    const std::uint64_t held = i % 2 == 0 ? 0 : 8 * kMillisecond;
    clock.timeOf(i, frameAt(1 + i * 9990000, kStart + i * 10 * kMillisecond + held));
  }
  // 0.01 ms a frame, from the first frame to the first of the last 32.
  EXPECT_NEAR(clock.drift(), 0.00288, 1e-9);
}

TEST(CameraClockTest, TheSwiftestOfTheFirst32TellsTheDelay) {
  CameraClock clock(ClockKind::kCamera, 100);
  // All take 5 ms but the 33rd, which is the first of the second 32.
  for (std::uint64_t i = 0; i < 64; ++i) {
    const std::uint64_t delay = i == 32 ? 2 : 5;
    clock.timeOf(i,
                 frameAt(1 + i * 10 * kMillisecond, kStart + (i * 10 + 3 + delay) * kMillisecond));
  }
  EXPECT_NEAR(clock.drift(), -0.003, 1e-9);
}

TEST(CameraClockTest, DelaysAloneAreNoDrift) {
  CameraClock clock(ClockKind::kCamera, 100);
  for (std::uint64_t i = 0; i < 320; ++i) {
    clock.timeOf(i, frameAt(1 + i * 1000, kStart + i * 1000 + i * 7919 % 5000 * (i % 8 != 0)));
  }
  EXPECT_EQ(clock.drift(), 0);
}

TEST(CameraClockTest, FewFramesTellNoDrift) {
  CameraClock clock(ClockKind::kCamera, 100);
  for (std::uint64_t i = 0; i < 31; ++i) clock.timeOf(i, frameAt(1 + i, kStart + i * 1000));
  EXPECT_EQ(clock.drift(), 0);
}

}  // namespace

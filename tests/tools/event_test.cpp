#include "tools/kpf/recording/event.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "tests/support/library_test.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

TEST(Limits, AreFramesOrSeconds) {
  EXPECT_EQ(parseAfter("100", 25).frames, 100U);
  EXPECT_EQ(parseAfter("100", 25).nanoseconds, kNoLimit);
  EXPECT_EQ(parseAfter("0", 25).frames, 1U);  // the one that began it
  EXPECT_EQ(parseAfter("2.5s", 25).frames, 63U);
  EXPECT_EQ(parseAfter("2.5s", 25).nanoseconds, 2500000000U);
  EXPECT_EQ(lasting(0.001, 25).frames, 1U);
  for (const char* text : {"", "s", "-1", "1e3", "2.5", "2.s", "1234567890", "5 s", "5s "}) {
    EXPECT_THROW(parseAfter(text, 25), ToolError) << text;
  }
}

TEST(MotionLevel, IsALevelOfGrey) {
  EXPECT_EQ(parseMotionLevel("motion:0"), 0);
  EXPECT_EQ(parseMotionLevel("motion:12.25"), 12.25);
  EXPECT_EQ(parseMotionLevel("motion:255"), 255);
  for (const char* text : {"", "motion", "motion:", "motion:255.1", "motion:-1", "motion:nan",
                           "sound:3", "motion:3 ", "motion:1e2"}) {
    EXPECT_THROW(parseMotionLevel(text), ToolError) << text;
  }
}

/// Has a pipe for standard input, into which a test types.
class EventTest : public TEST_SUPPORT::LibraryTest {
 protected:
  EventTest() : keyboard_(dup(STDIN_FILENO)) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    typing_ = ends[1];
  }
  ~EventTest() override {
    hangUp();
    dup2(keyboard_, STDIN_FILENO);
    close(keyboard_);
  }

  void type(std::string_view keys) const {
    EXPECT_EQ(write(typing_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  void hangUp() {
    if (typing_ >= 0) close(typing_);
    typing_ = -1;
  }

 private:
  int keyboard_;
  int typing_ = -1;
};

TEST_F(EventTest, ASignalFiresOnce) {
  Event event(false, nullptr);
  EXPECT_FALSE(event.fires(nullptr));
  std::raise(SIGUSR1);
  std::raise(SIGUSR1);
  EXPECT_TRUE(event.fires(nullptr));
  EXPECT_FALSE(event.fires(nullptr));
  EXPECT_EQ(event.motion(), nullptr);
}

TEST_F(EventTest, EnterFiresAndOtherKeysDoNot) {
  Event event(true, nullptr);
  type("abc");
  EXPECT_FALSE(event.fires(nullptr));
  type("x\n");
  EXPECT_TRUE(event.fires(nullptr));
  EXPECT_FALSE(event.fires(nullptr));
}

TEST_F(EventTest, KeysAreLeftToWhoeverReadsFramesThere) {
  Event event(false, nullptr);
  type("\n");
  EXPECT_FALSE(event.fires(nullptr));
  char left = 0;
  EXPECT_EQ(read(STDIN_FILENO, &left, 1), 1);
  EXPECT_EQ(left, '\n');
}

TEST_F(EventTest, ASignalIsStillHeardWhenTheInputEnds) {
  Event event(true, nullptr);
  hangUp();
  EXPECT_FALSE(event.fires(nullptr));
  std::raise(SIGUSR1);
  EXPECT_TRUE(event.fires(nullptr));
}

TEST_F(EventTest, WhatCameWhileARecordingRanIsForgotten) {
  Event event(true, nullptr);
  std::raise(SIGUSR1);
  event.arm();
  EXPECT_FALSE(event.fires(nullptr));
  type("\n");
  event.arm();
  EXPECT_FALSE(event.fires(nullptr));
}

TEST_F(EventTest, MotionFiresAndForgetsToo) {
  Event event(false, std::make_unique<MotionTrigger>(20, 4, 2, false));
  const std::vector<unsigned char> dark(8, 10);
  const std::vector<unsigned char> bright(8, 250);
  for (int i = 0; i < MotionTrigger::kWindow; ++i) EXPECT_FALSE(event.fires(dark.data()));
  EXPECT_TRUE(event.fires(bright.data()));
  EXPECT_GT(event.motion()->level(), 20);
  event.arm();
  EXPECT_FALSE(event.fires(bright.data()));
}

/// A signal beside motion is used up, and does not begin the next recording.
TEST_F(EventTest, ASignalBesideMotionIsUsedUp) {
  Event event(false, std::make_unique<MotionTrigger>(20, 4, 2, false));
  const std::vector<unsigned char> dark(8, 10);
  const std::vector<unsigned char> bright(8, 250);
  for (int i = 0; i < MotionTrigger::kWindow; ++i) event.fires(dark.data());
  std::raise(SIGUSR1);
  EXPECT_TRUE(event.fires(bright.data()));
  EXPECT_FALSE(event.fires(nullptr));
}

}  // namespace

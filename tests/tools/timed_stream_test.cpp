#include "tools/kpf/recording/timed_stream.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

using namespace KPF_TOOL;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// A stream that takes its time.
class SlowStream : public RecordStream {
 public:
  void addImage(const unsigned char* image) override {
    records += static_cast<char>(*image);
    now += takes;
  }
  void addPlaceholder() override {
    records += '-';
    now += takes;
  }

  std::string records;
  nanoseconds now{0};
  nanoseconds takes{0};
};

class TimedStreamTest : public testing::Test {
 protected:
  void frameAt(milliseconds time) {
    const unsigned char image = 'f';
    slow_.now = time;
    timed_.addImage(&image);
  }

  SlowStream slow_;
  TimedStream timed_{slow_, 10, [this] { return slow_.now; }};
};

TEST_F(TimedStreamTest, PassesOnWhatItIsGiven) {
  frameAt(milliseconds(0));
  timed_.addPlaceholder();
  frameAt(milliseconds(200));
  EXPECT_EQ(slow_.records, "f-f");
}

TEST_F(TimedStreamTest, MeasuresEachCall) {
  slow_.takes = milliseconds(3);
  frameAt(milliseconds(0));
  slow_.takes = milliseconds(7);
  timed_.addPlaceholder();
  EXPECT_EQ(timed_.calls().longest(), milliseconds(7));
  EXPECT_LT(timed_.calls().within(0.5), milliseconds(4));
}

TEST_F(TimedStreamTest, AFrameIsLateWhenItComesMoreThanAFrameTimeBehind) {
  frameAt(milliseconds(500));  // the first one sets the time
  frameAt(milliseconds(600));
  frameAt(milliseconds(800));  // a frame time late, and no more
  EXPECT_EQ(timed_.late(), 0U);
  frameAt(milliseconds(1001));
  EXPECT_EQ(timed_.late(), 1U);
}

TEST_F(TimedStreamTest, WhoWasLateOnceIsNotLateForEver) {
  for (const int time : {0, 900, 1000, 1100}) frameAt(milliseconds(time));
  EXPECT_EQ(timed_.late(), 1U);
}

TEST_F(TimedStreamTest, AClockThatRunsSlowerMakesNobodyLate) {
  for (int frame = 0; frame < 100; ++frame) frameAt(milliseconds(105 * frame));
  EXPECT_EQ(timed_.late(), 0U);
}

TEST_F(TimedStreamTest, LostFramesDelayNoOther) {
  frameAt(milliseconds(0));
  timed_.addPlaceholder();
  timed_.addPlaceholder();
  frameAt(milliseconds(300));
  timed_.addPlaceholder();
  frameAt(milliseconds(500));
  frameAt(milliseconds(600));
  EXPECT_EQ(timed_.late(), 0U);
  timed_.addPlaceholder();
  frameAt(milliseconds(901));
  EXPECT_EQ(timed_.late(), 1U);
}

TEST(TimedStreamClock, GoesOn) {
  const nanoseconds before = TimedStream::now();
  EXPECT_GE(TimedStream::now(), before);
  EXPECT_GT(before, nanoseconds{0});
}

}  // namespace

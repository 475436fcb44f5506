// The configuration's copy, the sizes and the times that follow from it.
#include <cmath>
#include <limits>
#include <utility>

#include "tests/stream/stream_test.h"

namespace {

using VLM_INTERNAL::VXP_STREAM_CONFIGURATION;
using VLM_KPF::VxKPFPackedStream;

class Configuration : public StreamTest {
 protected:
  /// The time of `frame` under the given start and rate.
  std::pair<unsigned long long, unsigned> timeOf(unsigned frame, int rate,
                                                 unsigned long long seconds,
                                                 unsigned microseconds) {
    VXP_STREAM_CONFIGURATION configuration;
    configuration.frameRate = rate;
    configuration.startSeconds = seconds;
    configuration.startMicroseconds = microseconds;
    stream.setConfiguration(configuration);
    std::pair<unsigned long long, unsigned> time{99, 99};
    stream.calcFrameTime(frame, time.first, time.second);
    return time;
  }

  using Time = std::pair<unsigned long long, unsigned>;
};

TEST_F(Configuration, WithoutOneEverythingIsZero) {
  EXPECT_EQ(stream.getBitsPerPixel(), 0);
  EXPECT_EQ(stream.getHeight(), 0U);
  EXPECT_EQ(stream.getWidth(), 0U);
  EXPECT_EQ(stream.getFrameCount(), 0U);
}

TEST_F(Configuration, EveryMemberIsCopied) {
  VXP_STREAM_CONFIGURATION c;
  c.text1 = "1", c.text2 = "2", c.text3 = "3", c.text4 = "4", c.text5 = "5", c.text6 = "6";
  c.text7 = "7", c.value1 = 8, c.value2 = 9, c.width = 10, c.height = 11, c.frameRate = 12;
  c.value3 = 13, c.bitsPerPixel = 14, c.frameCount = 15, c.value4 = 16, c.value5 = 17;
  c.value6 = 18, c.value7 = 19, c.value8 = 20, c.startSeconds = 21, c.startMicroseconds = 22;
  stream.setConfiguration(c);
  const VXP_STREAM_CONFIGURATION& copy = *stream.configuration;
  EXPECT_EQ(copy.text1 + copy.text2 + copy.text3 + copy.text4 + copy.text5, "12345");
  EXPECT_EQ(copy.text6 + copy.text7, "67");
  EXPECT_EQ(copy.value1, 8);
  EXPECT_EQ(copy.value2, 9);
  EXPECT_EQ(stream.getWidth(), 10U);
  EXPECT_EQ(stream.getHeight(), 11U);
  EXPECT_EQ(copy.frameRate, 12);
  EXPECT_EQ(copy.value3, 13);
  EXPECT_EQ(stream.getBitsPerPixel(), 14);
  EXPECT_EQ(stream.getFrameCount(), 15U);
  EXPECT_EQ(copy.value4, 16);
  EXPECT_EQ(copy.value5, 17);
  EXPECT_EQ(copy.value6, 18);
  EXPECT_EQ(copy.value7, 19);
  EXPECT_EQ(copy.value8, 20);
  EXPECT_EQ(copy.startSeconds, 21U);
  EXPECT_EQ(copy.startMicroseconds, 22U);
}

TEST_F(Configuration, SecondOneReplacesTheFirstWhole) {
  VXP_STREAM_CONFIGURATION first;
  first.text1 = "first";
  first.width = 7;
  stream.setConfiguration(first);
  VXP_STREAM_CONFIGURATION second;
  second.height = 8;
  stream.setConfiguration(second);
  EXPECT_EQ(stream.configuration->text1, "");
  EXPECT_EQ(stream.getWidth(), 0U);
  EXPECT_EQ(stream.getHeight(), 8U);
}

TEST_F(Configuration, CopyDoesNotFollowTheCaller) {
  VXP_STREAM_CONFIGURATION callers = smallConfiguration(1);
  stream.setConfiguration(callers);
  callers.text2 = "changed";
  callers.width = 99;
  EXPECT_EQ(stream.configuration->text2, "");
  EXPECT_EQ(stream.getWidth(), 4U);
}

TEST_F(Configuration, FramesAreSharedOutToFilesOfWholeRecords) {
  stream.framesPerDivFile = 1092;
  const auto place = [this](unsigned frame) {
    std::pair<unsigned, unsigned> found;
    stream.calcDivFileInfo(frame, found.first, found.second);
    return found;
  };
  using Place = std::pair<unsigned, unsigned>;
  EXPECT_EQ(place(0), Place(1, 0));
  EXPECT_EQ(place(1091), Place(1, 1091));
  EXPECT_EQ(place(1092), Place(2, 0));
  EXPECT_EQ(place(4294967295U), Place(3933121, 255));
  stream.framesPerDivFile = 0;  // frames without a size have no place
  EXPECT_EQ(place(5), Place(0, 0));
}

TEST_F(Configuration, TimeIsStartPlusFrameOverRate) {
  EXPECT_EQ(timeOf(250, 1000, 1700000000, 500000), Time(1700000000, 750000));
  EXPECT_EQ(timeOf(1, 30, 0, 0), Time(0, 33333));
  EXPECT_EQ(timeOf(0, 30, 5, 7), Time(5, 7));
}

TEST_F(Configuration, MicrosecondsAreCutNotRounded) {
  EXPECT_EQ(timeOf(2, 3, 0, 0), Time(0, 666666));
  EXPECT_EQ(timeOf(5, 7, 0, 0), Time(0, 714285));
}

TEST_F(Configuration, MicrosecondsBeyondASecondCarryOver) {
  EXPECT_EQ(timeOf(0, 1, 10, 2500000), Time(12, 500000));
}

TEST_F(Configuration, TimeIsThatOfTheSingleStepsInDoublePrecision) {
  for (const int rate : {1, 7, 24, 30, 60, 240, 999, 1001, 50000}) {
    for (const unsigned frame : {0U, 1U, 2U, 3U, 99U, 1000U, 123457U, 4294967295U}) {
      // volatile: each step is rounded by itself, whatever the compiler would like to fuse
      volatile double t = 123456 / 1000000.0;
      t = t + 1700000000.0;
      volatile double step = 1.0 / rate;
      step = step * frame;
      t = t + step;
      const double whole = std::floor(t);
      volatile double rest = t - whole;
      rest = rest * 1000000.0;
      EXPECT_EQ(timeOf(frame, rate, 1700000000, 123456),
                Time(static_cast<unsigned long long>(whole), static_cast<unsigned>(rest)))
          << frame << " at " << rate;
    }
  }
}

TEST_F(Configuration, ReciprocalIsTakenBeforeTheProduct) {
  EXPECT_LT((1.0 / 49) * 49, 1.0);
  EXPECT_EQ(timeOf(49, 49, 0, 0), Time(0, 999999));
}

TEST_F(Configuration, StartAbove2To63IsTakenAsUnsigned) {
  EXPECT_EQ(timeOf(0, 1, 1ULL << 63, 0), Time(1ULL << 63, 0));
  EXPECT_EQ(timeOf(0, 1, 0xFFFFFFFFFFFFF800ULL, 0), Time(0xFFFFFFFFFFFFF800ULL, 0));
}

TEST_F(Configuration, TimesWithoutMeaningAreStillDefined) {
  // 2^64 and above, and NaN, are what no integer holds.
  EXPECT_EQ(timeOf(0, 1, 0xFFFFFFFFFFFFFFFFULL, 0).first, 1ULL << 63);
  EXPECT_EQ(timeOf(0, 0, 0, 0).first, 1ULL << 63);
  EXPECT_EQ(timeOf(1, 0, 0, 0).first, 1ULL << 63);
  // Times before the epoch count down in two's complement.
  EXPECT_EQ(timeOf(5, -1, 0, 0).first, static_cast<unsigned long long>(-5LL));
  EXPECT_EQ(timeOf(1, -2, 0, 0), Time(0, static_cast<unsigned>(-500000)));
}

TEST_F(Configuration, SizesFollowTheDocumentedExamples) {
  VXP_STREAM_CONFIGURATION c = smallConfiguration(1);
  c.width = 1280;
  c.height = 1024;
  ASSERT_EQ(stream.prepareForWriting(name, c), 3U);
  EXPECT_EQ(stream.frameSize, 1966080U);
  EXPECT_EQ(stream.framesPerDivFile, 1092U);
  c.bitsPerPixel = 8;
  VxKPFPackedStream eightBit;
  ASSERT_EQ(eightBit.prepareForWriting(folder / "eight.kpf", c), 3U);
  EXPECT_EQ(eightBit.frameSize, 1310720U);
  EXPECT_EQ(eightBit.framesPerDivFile, 1638U);
}

}  // namespace

#include "tools/kpf/recording/recorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace KPF_TOOL;

/// Frames of 3 x 2 pixels, frame n full of n + 1, shown at the times of a script.
class ScriptedSource : public FrameSource {
 public:
  explicit ScriptedSource(std::vector<std::optional<double>> times) : times_(std::move(times)) {}

  unsigned width() const override { return 3; }
  unsigned height() const override { return 2; }
  Samples samples() const override { return Samples::k8Bit; }
  double frameRate() const override { return 10; }
  std::uint64_t frameCount() const override { return 0; }
  bool next() override {
    if (given_ == times_.size()) return false;
    if (given_ == failsAt_) throw std::runtime_error("the input breaks");
    ++given_;
    return true;
  }
  std::optional<double> time() const override { return times_[given_ - 1]; }
  void copyTo(unsigned char* out, std::size_t stride) override {
    for (unsigned y = 0; y < height(); ++y) {
      std::fill_n(out + y * stride, width(), static_cast<unsigned char>(given_));
    }
  }
  void skip(std::uint64_t) override {}
  bool lost() const override { return given_ == damagedAt_; }

  std::size_t given() const { return given_; }
  void failAt(std::size_t frame) { failsAt_ = frame; }
  /// @param frame counted from 1.
  void damage(std::size_t frame) { damagedAt_ = frame; }

 private:
  std::vector<std::optional<double>> times_;
  std::size_t given_ = 0;
  std::size_t failsAt_ = 1000000;
  std::size_t damagedAt_ = 0;
};

/// Writes down what it is given: a digit for a frame, '-' for a placeholder.
class ListeningStream : public RecordStream {
 public:
  void addImage(const unsigned char* image) override {
    records += static_cast<char>('0' + image[0]);
    images.emplace_back(image, image + 8);
  }
  void addPlaceholder() override { records += '-'; }

  std::string records;
  std::vector<std::vector<unsigned char>> images;
};

class RecorderTest : public testing::Test {
 protected:
  void record(ScriptedSource& source, std::uint64_t frames, bool fillGaps = true) {
    ASSERT_TRUE(source.next());
    Recorder recorder(source, stream_, frames, Timeline(fillGaps, 10));
    recorder.run([this] { return stream_.records.size() >= stopAt_; },
                 [this](std::uint64_t written) { progress_.push_back(written); });
    written_ = recorder.written();
    placeholders_ = recorder.placeholders();
    damaged_ = recorder.damaged();
  }

  ListeningStream stream_;
  std::size_t stopAt_ = 1000000;
  std::vector<std::uint64_t> progress_;
  std::uint64_t written_ = 0;
  std::uint64_t placeholders_ = 0;
  std::uint64_t damaged_ = 0;
};

TEST_F(RecorderTest, EveryFrameBecomesARecord) {
  ScriptedSource source({0.0, 0.1, 0.2});
  record(source, 3);
  EXPECT_EQ(stream_.records, "123");
  EXPECT_EQ(written_, 3U);
  EXPECT_EQ(placeholders_, 0U);
  EXPECT_EQ(progress_, (std::vector<std::uint64_t>{1, 2, 3}));
}

TEST_F(RecorderTest, RowsArePaddedToFourBytes) {
  ScriptedSource source({0.0});
  record(source, 1);
  ASSERT_EQ(stream_.images.size(), 1U);
  EXPECT_EQ(stream_.images[0], (std::vector<unsigned char>{1, 1, 1, 0, 1, 1, 1, 0}));
}

TEST_F(RecorderTest, NoMoreFramesAreTakenThanWanted) {
  ScriptedSource source({0.0, 0.1, 0.2, 0.3});
  record(source, 2);
  EXPECT_EQ(stream_.records, "12");
  EXPECT_EQ(source.given(), 2U);
}

TEST_F(RecorderTest, AnInputMayEndEarly) {
  ScriptedSource source({0.0, 0.1});
  record(source, 9);
  EXPECT_EQ(stream_.records, "12");
  EXPECT_EQ(written_, 2U);
}

TEST_F(RecorderTest, GapsBecomePlaceholders) {
  ScriptedSource source({0.0, 0.3, 0.4});
  record(source, 5);
  EXPECT_EQ(stream_.records, "1--23");
  EXPECT_EQ(written_, 5U);
  EXPECT_EQ(placeholders_, 2U);
  EXPECT_EQ(progress_, (std::vector<std::uint64_t>{1, 4, 5}));
}

TEST_F(RecorderTest, GapsStayClosedUnlessTheyAreToBeFilled) {
  ScriptedSource source({0.0, 0.3, 0.4});
  record(source, 5, false);
  EXPECT_EQ(stream_.records, "123");
}

TEST_F(RecorderTest, TheLastFrameMayLieInsideAGap) {
  ScriptedSource source({0.0, 0.5, 0.6});
  record(source, 4);
  EXPECT_EQ(stream_.records, "1---");
  EXPECT_EQ(written_, 4U);
  EXPECT_EQ(placeholders_, 3U);
}

TEST_F(RecorderTest, AGapMayEndExactlyWithTheRecording) {
  ScriptedSource source({0.0, 0.3, 0.4});
  record(source, 3);
  EXPECT_EQ(stream_.records, "1--");
  EXPECT_EQ(placeholders_, 2U);
}

TEST_F(RecorderTest, StopsBetweenTwoFrames) {
  ScriptedSource source({0.0, 0.1, 0.2});
  stopAt_ = 2;
  record(source, 3);
  EXPECT_EQ(stream_.records, "12");
  EXPECT_EQ(source.given(), 2U);
}

TEST_F(RecorderTest, TheFrameThatIsThereIsRecordedHoweverEarlyTheWishToStop) {
  ScriptedSource source({0.0, 0.1});
  stopAt_ = 0;
  record(source, 2);
  EXPECT_EQ(stream_.records, "1");
  EXPECT_EQ(source.given(), 1U);
}

TEST_F(RecorderTest, AWishToStopEndsALongGap) {
  ScriptedSource source({0.0, 1e9});
  stopAt_ = 5;
  record(source, 1000000000);
  EXPECT_EQ(stream_.records, "1----");
  EXPECT_EQ(written_, 5U);
}

TEST_F(RecorderTest, DamagedFramesKeepTheirPlaces) {
  ScriptedSource source({0.0, 0.1, 0.3, 0.4});
  source.damage(3);
  record(source, 9);
  EXPECT_EQ(stream_.records, "12--4");
  EXPECT_EQ(placeholders_, 2U);
  EXPECT_EQ(damaged_, 1U);
  EXPECT_EQ(written_, 5U);
}

TEST_F(RecorderTest, WhatWasWrittenBeforeAnErrorIsCounted) {
  ScriptedSource source({0.0, 0.1, 0.2});
  source.failAt(2);
  ASSERT_TRUE(source.next());
  Recorder recorder(source, stream_, 3, Timeline(false, 10));
  EXPECT_THROW(recorder.run([] { return false; }, [](std::uint64_t) {}), std::runtime_error);
  EXPECT_EQ(recorder.written(), 2U);
}

}  // namespace

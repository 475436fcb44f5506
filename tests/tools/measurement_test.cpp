#include "tools/kpf/probing/measurement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/tools/waveforms.h"
#include "tools/kpf/probing/files.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

constexpr double kRate = 100;
constexpr std::uint64_t kFrames = 120;

/// The scene's disc, which swings by half a pixel at 5 Hz. Somebody cuts it off behind `there`
/// frames.
class SwingingDisc : public FrameSource {
 public:
  explicit SwingingDisc(std::uint64_t there = kFrames) : there_(there) {}

  unsigned width() const override { return Scene::kWidth; }
  unsigned height() const override { return Scene::kHeight; }
  Samples samples() const override { return Samples::k8Bit; }
  double frameRate() const override { return kRate; }
  std::uint64_t frameCount() const override { return kFrames; }
  bool next() override { return given_++ < there_; }
  void copyTo(unsigned char* out, std::size_t) override {
    const auto frame = scene_.frame(swing(5, kRate, given_ - 1, 0.5), 0);
    std::copy(frame.begin(), frame.end(), out);
  }
  std::optional<double> time() const override { return std::nullopt; }
  void skip(std::uint64_t frames) override { given_ += frames; }

 private:
  Scene scene_{0.5};
  std::uint64_t there_;
  std::uint64_t given_ = 0;
};

class MeasurementTest : public testing::Test {
 protected:
  /// Whether every number from 1 to `last` was told, in this order.
  void expectProgressTo(std::uint64_t last) const {
    ASSERT_EQ(told_.size(), last);
    for (std::uint64_t n = 0; n < last; ++n) EXPECT_EQ(told_[n], n + 1);
  }

  Probed probed_{[] { return std::make_unique<SwingingDisc>(); },
                 Scene::layout(),
                 kRate,
                 {0, kFrames - 1},
                 kFrames};
  /// From the second pass on so many frames are left.
  void shrinkBetweenPasses(std::uint64_t left) {
    probed_.open = [left, passes = 0]() mutable {
      return std::make_unique<SwingingDisc>(passes++ == 0 ? kFrames : left);
    };
  }

  std::vector<std::uint64_t> told_;
  ProbeProgress progress_ = [this](std::uint64_t frames) { told_.push_back(frames); };
};

TEST_F(MeasurementTest, ReadsTheFramesTwice) {
  const Measurement found = measure(probed_, {28, 20, 8, 8}, progress_);
  ASSERT_TRUE(found.suggestedFrequency());
  EXPECT_NEAR(*found.suggestedFrequency(), 5, 0.1);
  expectProgressTo(2 * kFrames);
}

TEST_F(MeasurementTest, WhatGoesAwayBetweenThePassesIsLostAndTold) {
  shrinkBetweenPasses(100);
  const Measurement found = measure(probed_, {28, 20, 8, 8}, progress_);
  EXPECT_EQ(found.flaw, "20 of 120 frames went away meanwhile");
  ASSERT_EQ(found.x.waveform.values().size(), kFrames);
  const std::vector<bool> lost = found.lost();
  EXPECT_EQ(std::count(lost.begin(), lost.end(), true), 20);
  EXPECT_FALSE(lost[99]);
  EXPECT_TRUE(lost[100]);
  // The table has a row for each, and says which were measured.
  const std::string table = waveformTable(found, 0, std::nullopt);
  EXPECT_NE(table.find("\n99,0.99,0,"), std::string::npos);
  EXPECT_NE(table.find("\n119,1.19,1,"), std::string::npos);
}

TEST_F(MeasurementTest, WhatGoesAwayBetweenThePassesOfAMapIsTold) {
  shrinkBetweenPasses(100);
  const MapResult found = mapOfDominance(probed_, progress_);
  EXPECT_EQ(found.flaw, "20 of 120 frames went away meanwhile");
  EXPECT_EQ(found.lost, 20U);
}

TEST_F(MeasurementTest, AnotherRecordingInItsPlaceIsAnError) {
  --probed_.layout.width;
  EXPECT_THROW(measure(probed_, {28, 20, 8, 8}, progress_), ToolError);
  EXPECT_THROW(mapOfFrequency(probed_, 5, progress_), ToolError);
}

TEST_F(MeasurementTest, AMapOfOneFrequencyTakesOnePass) {
  EXPECT_EQ(mapOfFrequency(probed_, 5, progress_).lost, 0U);
  expectProgressTo(kFrames);
}

TEST_F(MeasurementTest, AMapOfWhatDominatesTakesTwo) {
  const MapResult found = mapOfDominance(probed_, progress_);
  ASSERT_FALSE(found.frequencies.empty());
  EXPECT_NEAR(found.frequencies[0], 5, 0.1);
  expectProgressTo(2 * kFrames);
}

}  // namespace

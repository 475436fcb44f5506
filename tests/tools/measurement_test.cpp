#include "tools/kpf/probing/measurement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "tests/tools/waveforms.h"

namespace {

using namespace KPF_TOOL;

constexpr double kRate = 100;
constexpr std::uint64_t kFrames = 120;

/// The scene's disc, which swings by half a pixel at 5 Hz.
class SwingingDisc : public FrameSource {
 public:
  unsigned width() const override { return Scene::kWidth; }
  unsigned height() const override { return Scene::kHeight; }
  Samples samples() const override { return Samples::k8Bit; }
  double frameRate() const override { return kRate; }
  std::uint64_t frameCount() const override { return kFrames; }
  bool next() override { return given_++ < kFrames; }
  void copyTo(unsigned char* out, std::size_t) override {
    const auto frame = scene_.frame(swing(5, kRate, given_ - 1, 0.5), 0);
    std::copy(frame.begin(), frame.end(), out);
  }
  std::optional<double> time() const override { return std::nullopt; }
  void skip(std::uint64_t frames) override { given_ += frames; }

 private:
  Scene scene_{0.5};
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
  std::vector<std::uint64_t> told_;
  ProbeProgress progress_ = [this](std::uint64_t frames) { told_.push_back(frames); };
};

TEST_F(MeasurementTest, ReadsTheFramesTwice) {
  const Measurement found = measure(probed_, {28, 20, 8, 8}, progress_);
  ASSERT_TRUE(found.suggestedFrequency());
  EXPECT_NEAR(*found.suggestedFrequency(), 5, 0.1);
  expectProgressTo(2 * kFrames);
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

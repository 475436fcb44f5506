#include "tools/kpf/recording/input_as_live.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace KPF_TOOL;
using State = LiveFrame::State;

/// Frames of 3 x 1 pixels of 8 or 16 bits, shown at the times of a script at 10 frames/s.
class Script : public FrameSource {
 public:
  explicit Script(std::vector<std::optional<double>> times, Samples samples = Samples::k8Bit)
      : times_(std::move(times)), samples_(samples) {
    Script::next();
  }

  unsigned width() const override { return 3; }
  unsigned height() const override { return 1; }
  Samples samples() const override { return samples_; }
  double frameRate() const override { return 10; }
  std::uint64_t frameCount() const override { return 0; }
  bool next() override { return given_ < times_.size() && ++given_ > 0; }
  std::optional<double> time() const override { return times_[given_ - 1]; }
  void copyTo(unsigned char* out, std::size_t) override {
    for (std::size_t i = 0; i < rowSize(); ++i)
      out[i] = static_cast<unsigned char>(given_ * 16 + i);
  }
  void skip(std::uint64_t) override {}
  bool lost() const override { return given_ == lost_; }
  std::string flaw() const override { return lost_ == 0 ? "" : "1 frame is damaged"; }

  /// @param frame counted from 1.
  void lose(std::size_t frame) { lost_ = frame; }

 private:
  std::vector<std::optional<double>> times_;
  Samples samples_;
  std::size_t given_ = 0;
  std::size_t lost_ = 0;
};

std::uint64_t now() {
  using namespace std::chrono;
  return static_cast<std::uint64_t>(
      duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count());
}

TEST(InputAsLive, GivesTheFirstFrameFirst) {
  Script script({0.0, 0.1});
  InputAsLive live(script, 8, Timeline(false, 10));
  const std::uint64_t before = now();
  const LiveFrame first = live.next();
  ASSERT_EQ(first.state, State::kGood);
  EXPECT_EQ(std::vector<unsigned char>(first.record + 16, first.record + 19),
            (std::vector<unsigned char>{16, 17, 18}));
  EXPECT_GE(first.arrival, before);
  EXPECT_LE(first.arrival, now());
  const LiveFrame second = live.next();
  EXPECT_EQ(second.id, first.id + 1);
  EXPECT_GT(second.id, 0xFFFFFFFFU);  // ids of 64 bits never begin again
  EXPECT_EQ(second.record[16], 32);
  EXPECT_EQ(live.next().state, State::kEnd);
  EXPECT_EQ(live.trouble(), "");
}

TEST(InputAsLive, TellsTimesWhereThereAre) {
  Script script({0.5, std::nullopt, -3.0});
  InputAsLive live(script, 8, Timeline(false, 10));
  EXPECT_EQ(live.next().cameraTime, 500000001U);  // never 0, which is no time
  EXPECT_EQ(live.next().cameraTime, 0U);
  EXPECT_EQ(live.next().cameraTime, 1U);
}

TEST(InputAsLive, GapsShowInTheIds) {
  Script script({0.0, 0.4});
  InputAsLive live(script, 8, Timeline(true, 10));
  const std::uint64_t first = live.next().id;
  EXPECT_EQ(live.next().id, first + 4);
}

TEST(InputAsLive, ADamagedFrameIsIncompleteAndTrouble) {
  Script script({0.0, 0.1, 0.2});
  script.lose(2);
  InputAsLive live(script, 8, Timeline(false, 10));
  const std::uint64_t first = live.next().id;
  EXPECT_EQ(live.next().state, State::kIncomplete);
  const LiveFrame third = live.next();
  EXPECT_EQ(third.state, State::kGood);
  EXPECT_EQ(third.id, first + 2);
  EXPECT_EQ(live.trouble(), "1 frame is damaged");
}

/// Of an odd width the last column has no partner to share three bytes with.
TEST(InputAsLive, TwelveBitsArePacked) {
  Script script({0.0}, Samples::k16Bit);
  InputAsLive live(script, 12, Timeline(false, 10));
  const LiveFrame frame = live.next();
  // Samples 0x1110, 0x1312, little-endian and left-justified: 0x111 and 0x131.
  EXPECT_EQ(std::vector<unsigned char>(frame.record + 16, frame.record + 19),
            (std::vector<unsigned char>{0x11, 0x11, 0x13}));
}

}  // namespace

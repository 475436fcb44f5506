// What lies before the first frame that is asked for, where some frames are lost.
#include "tools/kpf/frames/frames_before.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace KPF_TOOL;

/// One pixel a frame, which is its number; `pattern` has an x for a lost one.
class Scripted : public FrameSource {
 public:
  explicit Scripted(const std::string& pattern) : pattern_(pattern) {}

  unsigned width() const override { return 1; }
  unsigned height() const override { return 1; }
  Samples samples() const override { return Samples::k8Bit; }
  double frameRate() const override { return 25; }
  std::uint64_t frameCount() const override { return pattern_.size(); }
  bool next() override {
    if (next_ >= pattern_.size()) return false;
    ++next_;
    return true;
  }
  bool back() override {
    if (next_ < 2) return false;
    --next_;
    return true;
  }
  bool lost() const override { return pattern_[next_ - 1] == 'x'; }
  std::optional<double> time() const override { return std::nullopt; }
  void copyTo(unsigned char* out, std::size_t) override {
    *out = static_cast<unsigned char>(next_ - 1);
  }
  void skip(std::uint64_t frames) override { next_ += frames; }

 private:
  std::string pattern_;
  std::uint64_t next_ = 0;
};

int pixelBefore(const std::string& pattern, std::uint64_t first) {
  Scripted source(pattern);
  const std::vector<unsigned char> rows = frameBefore(source, first);
  EXPECT_EQ(rows.size(), 1U);
  return rows.at(0);
}

std::uint64_t startBefore(const std::string& pattern, std::uint64_t first, std::uint64_t wanted) {
  Scripted source(pattern);
  return startOfFramesBefore(source, first, wanted);
}

TEST(FramesBefore, TheNearestThatWasNotLostIsRepeated) {
  EXPECT_EQ(pixelBefore("...x..", 3), 2);
  EXPECT_EQ(pixelBefore("..xxx.", 5), 1);
  EXPECT_EQ(pixelBefore("......", 1), 0);
}

TEST(FramesBefore, WithoutOneItIsBlack) {
  EXPECT_EQ(pixelBefore("x...", 0), 0);
  EXPECT_EQ(pixelBefore("xxx.", 3), 0);
}

TEST(FramesBefore, WindowsAreFilledFromFramesThatWereNotLost) {
  EXPECT_EQ(startBefore("......", 5, 3), 2U);
  EXPECT_EQ(startBefore("...x..", 5, 3), 1U);
  EXPECT_EQ(startBefore(".xxx..", 5, 2), 0U);
  EXPECT_EQ(startBefore("......", 5, 0), 5U);
  EXPECT_EQ(startBefore("......", 0, 3), 0U);
}

TEST(FramesBefore, WhereThereAreNotEnoughAllAreTaken) {
  EXPECT_EQ(startBefore("..x...", 3, 9), 0U);
  EXPECT_EQ(startBefore("xxx...", 3, 1), 0U);
}

}  // namespace

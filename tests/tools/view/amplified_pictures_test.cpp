#include "tools/kpf/view/amplified_pictures.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "tools/kpf/analysis/clean_amplifier.h"
#include "tools/kpf/frames/amplifier.h"

namespace {

using namespace KPF_TOOL;
using Frame = std::vector<unsigned char>;

constexpr int kWindow = 6;

Moment momentOf(const Frame& frame, const Frame& reference) {
  return {0, std::make_shared<const Frame>(frame), std::make_shared<const Frame>(reference), true,
          kWindow};
}

/// Every frame level beside every reference.
struct AllPairs {
  AllPairs() {
    for (int pair = 0; pair < 256 * 256; ++pair) {
      frame.push_back(static_cast<unsigned char>(pair));
      reference.push_back(static_cast<unsigned char>(pair / 256));
    }
  }
  Frame frame, reference;
};

/// What the library makes of a frame behind four black ones: its reference is the frame's sixth.
TEST(AmplifiedPictures, AreThoseOfTheLibraryForEveryGain) {
  Frame levels;
  for (int level = 0; level < 256; ++level) levels.push_back(static_cast<unsigned char>(level));
  for (const double gain : {0.0, 0.3, 1.0, 1.5, 2.999, 8.0, 31.9, 64.0, 254.7, 255.0}) {
    Amplifier library({25, 12, 16, 16, gain});
    for (std::size_t n = 0; n < library.fillingFrames(); ++n) library.add(Frame(256));
    library.add(levels);
    ASSERT_TRUE(library.available());
    const auto made = picturesOf(momentOf(levels, library.reference()), gain, false, false);
    EXPECT_EQ(*made.amplified, library.amplified()) << gain;
    EXPECT_EQ(*made.reference, library.reference());
  }
}

TEST(AmplifiedPictures, CleanOnesAreThoseOfTheCleanAmplifier) {
  const AllPairs all;
  for (const double gain : {0.0, 1.5, 16.0}) {
    const CleanAmplifier amplifier(kWindow, gain);
    Frame wanted(all.frame.size()), mean(all.frame.size());
    amplifier.amplify(all.frame, all.reference, wanted);
    amplifier.correct(all.frame, all.reference, mean);
    const auto made = picturesOf(momentOf(all.frame, all.reference), gain, true, false);
    EXPECT_EQ(*made.amplified, wanted) << gain;
    EXPECT_EQ(*made.reference, mean) << gain;
  }
}

TEST(AmplifiedPictures, MarkWhatWrapsAndWhatClips) {
  // Differences of 0, 31, 32 and 20: times 8 that is 0, 248, 256 and 160; below the reference none.
  const Moment moment = momentOf({10, 31, 32, 120, 5}, {10, 0, 0, 100, 90});
  const auto made = picturesOf(moment, 8, false, true);
  EXPECT_EQ(*made.marks, (Frame{kUnmarked, kClips, kWraps, kClips, kUnmarked}));
  EXPECT_EQ(made.wraps, 1U);
  EXPECT_EQ(made.clips, 2U);
  EXPECT_EQ(*made.amplified, (Frame{10, 255, 32, 255, 5}));
}

TEST(AmplifiedPictures, CountWhatNobodyWantsMarked) {
  const auto made = picturesOf(momentOf({31, 32, 120}, {0, 0, 100}), 8, false, false);
  EXPECT_EQ(made.wraps, 1U);
  EXPECT_EQ(made.clips, 2U);
  EXPECT_TRUE(made.marks->empty());
}

TEST(AmplifiedPictures, CleanOnesClipOnBothSides) {
  // References of 83 stand for means of 99.6 to 100.8, of which 100 is the whole one.
  const auto made = picturesOf(momentOf({100, 120, 80, 101}, {83, 83, 83, 83}), 8, true, true);
  EXPECT_EQ(*made.reference, (Frame{100, 100, 100, 100}));
  EXPECT_EQ(*made.amplified, (Frame{100, 255, 0, 109}));
  EXPECT_EQ(*made.marks, (Frame{kUnmarked, kClips, kClips, kUnmarked}));
  EXPECT_EQ(made.clips, 2U);
}

TEST(AmplifiedPictures, FramesPassWhileTheWindowFills) {
  for (const bool clean : {false, true}) {
    Moment moment = momentOf({0, 128, 255}, {0, 128, 255});
    moment.windowFull = false;
    const auto made = picturesOf(moment, 8, clean, true);
    EXPECT_EQ(*made.amplified, (Frame{0, 128, 255}));
    EXPECT_EQ(*made.reference, (Frame{0, 128, 255}));
    EXPECT_EQ(*made.marks, Frame(3));
    EXPECT_FALSE(made.windowFull);
  }
}

}  // namespace

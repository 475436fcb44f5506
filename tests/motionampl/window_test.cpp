// The amplifier over long runs, held against sums taken anew from the frames of the window.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <random>

#include "tests/motionampl/frames.h"
#include "tests/support/library_test.h"

namespace {

using namespace TEST_MOTIONAMPL;
using VLM_KPF::VxKPFMotionAmpl;

/// The last `window` - 1 frames, summed from scratch for every question.
class FreshSums {
 public:
  explicit FreshSums(int window) : window_(static_cast<unsigned>(window)) {}

  void add(const Samples& frame) {
    frames_.push_back(frame);
    if (frames_.size() >= window_) frames_.pop_front();
  }

  bool complete() const { return frames_.size() + 1 == window_; }

  Samples reference() const {
    Samples out;
    for (std::size_t i = 0; i < frames_.back().size(); ++i) {
      unsigned sum = 0;
      for (const Samples& frame : frames_) sum += frame[i];
      out.push_back(static_cast<unsigned char>(sum / window_));
    }
    return out;
  }

  Samples amplified(double factor) const {
    Samples out = frames_.back();
    const Samples against = reference();
    for (std::size_t i = 0; i < out.size(); ++i) {
      const int difference = std::max(out[i] - against[i], 0);
      const auto added = static_cast<int>(difference * factor) & 255;
      out[i] = static_cast<unsigned char>(std::min(out[i] + added, 255));
    }
    return out;
  }

 private:
  unsigned window_;
  std::deque<Samples> frames_;
};

class Window : public TEST_SUPPORT::LibraryTest {
 protected:
  Samples randomFrame(std::size_t samples) {
    Samples frame(samples);
    for (unsigned char& sample : frame) sample = static_cast<unsigned char>(random_() % 256);
    return frame;
  }

  /// Runs `count` random frames through an amplifier and compares whatever it delivers.
  void compareOver(int count, int framesPerCycle, double factor) {
    constexpr std::size_t kSamples = 71;
    VxKPFMotionAmpl amplifier;
    amplifier.setParameters(framesPerCycle, 1.0, 71, 1, factor);
    FreshSums fresh(3 * framesPerCycle);
    for (int i = 0; i < count; ++i) {
      const Samples frame = randomFrame(kSamples);
      add(amplifier, frame);
      fresh.add(frame);
      ASSERT_EQ(amplifier.amplifyAvailable(), fresh.complete()) << "frame " << i;
      if (!fresh.complete()) continue;
      ASSERT_EQ(referenceOf(amplifier, kSamples), fresh.reference()) << "frame " << i;
      ASSERT_EQ(amplifiedBy(amplifier, kSamples), fresh.amplified(factor)) << "frame " << i;
    }
  }

 private:
  std::mt19937 random_{4711};
};

TEST_F(Window, OfThreeFollowsThousandsOfFrames) { compareOver(3000, 1, 3.0); }
TEST_F(Window, OfNineFollowsThousandsOfFrames) { compareOver(2000, 3, 0.7); }
TEST_F(Window, OfThirtyFollowsHundredsOfFrames) { compareOver(600, 10, 7.25); }
TEST_F(Window, OfThreeHundredFollowsHundredsOfFrames) { compareOver(700, 100, -1.5); }

TEST_F(Window, HoldsOneFrameLessThanItsSize) {
  VxKPFMotionAmpl amplifier;
  amplifier.setParameters(100.0, 1.0, 1, 1, 1.0);
  for (std::size_t i = 1; i <= 400; ++i) {
    add(amplifier, {1});
    ASSERT_EQ(amplifier.frames.size(), std::min<std::size_t>(i, 299));
    ASSERT_EQ(amplifier.summer->front(), std::min<std::size_t>(i, 299));
    ASSERT_EQ(amplifier.amplifyAvailable(), i >= 299);
  }
}

TEST_F(Window, LosesTheOldestFrameFirst) {
  VxKPFMotionAmpl amplifier;
  amplifier.setParameters(2.0, 1.0, 1, 1, 1.0);
  for (unsigned char value = 0; value < 20; ++value) add(amplifier, {value});
  ASSERT_EQ(amplifier.frames.size(), 5U);
  EXPECT_EQ(*amplifier.frames.front(), 15);
  EXPECT_EQ(*amplifier.frames.back(), 19);
}

/// Amplifies one frame on `threads` threads.
Samples amplifiedOn(int threads, const Samples& first, const Samples& second) {
  VxKPFMotionAmpl amplifier;
  const int samples = static_cast<int>(first.size());
  amplifier.setParameters(1.0, 1.0, samples, 1, 2.3);
  add(amplifier, first);
  add(amplifier, second);
  const int before = omp_get_max_threads();
  omp_set_num_threads(threads);
  Samples out = amplifiedBy(amplifier, first.size());
  omp_set_num_threads(before);
  return out;
}

// On both sides of the size from which frames are shared out, and where shares differ by one.
TEST_F(Window, NumberOfThreadsDoesNotShow) {
  for (const std::size_t samples : {std::size_t{1000}, std::size_t{65535}, std::size_t{65536},
                                    std::size_t{65537}, std::size_t{200003}}) {
    const Samples first = randomFrame(samples);
    const Samples second = randomFrame(samples);
    FreshSums fresh(3);
    fresh.add(first);
    fresh.add(second);
    const Samples expected = fresh.amplified(2.3);
    for (const int threads : {1, 2, 3, 7}) {
      ASSERT_EQ(amplifiedOn(threads, first, second), expected)
          << samples << " samples on " << threads << " threads";
    }
  }
}

}  // namespace

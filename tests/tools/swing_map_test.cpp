#include "tools/kpf/analysis/swing_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <random>
#include <tuple>
#include <vector>

#include "tests/tools/waveforms.h"
#include "tools/kpf/analysis/box_mean.h"
#include "tools/kpf/analysis/candidates.h"
#include "tools/kpf/analysis/frame_batch.h"

namespace {

using namespace KPF_TOOL;
using Frame = std::vector<unsigned char>;

constexpr double kRate = 100;
constexpr std::size_t kLost = 150;  // the frame that is lost where one is

/// A disc that swings by a tenth of a pixel, 5 times a second, under noise.
std::vector<Frame> scene(std::size_t frames, double hertz = 5) {
  Scene scene(0.8);
  std::vector<Frame> made;
  for (std::size_t n = 0; n < frames; ++n)
    made.push_back(scene.frame(swing(hertz, kRate, n, 0.1), 0));
  return made;
}

template <class Sink>
void feed(const std::vector<Frame>& frames, const PictureLayout& layout, Sink& sink,
          std::size_t lost = ~std::size_t{0}) {
  FrameBatch batch(layout,
                   [&sink](const unsigned char* in, std::size_t count) { sink.add(in, count); });
  for (std::size_t n = 0; n < frames.size(); ++n) {
    if (n == lost) {
      batch.addLost();
      continue;
    }
    std::copy(frames[n].begin(), frames[n].end(), batch.place());
    batch.add();
  }
  batch.finish();
}

SwingMap mapped(const std::vector<Frame>& frames, const std::vector<double>& hertz,
                std::size_t lost = ~std::size_t{0}) {
  SwingMap map(Scene::layout(), Stretches::of(frames.size()), kRate, hertz);
  feed(frames, Scene::layout(), map, lost);
  return map;
}

/// The highest value among the pixels that `wanted` tells by their distance from the disc's middle.
float highest(const PictureMap& map, const std::function<bool(double)>& wanted) {
  float found = 0;
  for (unsigned y = 0; y < map.height; ++y) {
    for (unsigned x = 0; x < map.width; ++x) {
      if (wanted(Scene::distance(x, y))) found = std::max(found, map.values[y * map.width + x]);
    }
  }
  return found;
}

TEST(Stretches, AreEqualAndNotTooLong) {
  for (const auto& [frames, length, count] : {std::tuple{0U, 0U, 0U},
                                              {1U, 1U, 1U},
                                              {1024U, 1024U, 1U},
                                              {1025U, 512U, 2U},
                                              {3073U, 768U, 4U}}) {
    const Stretches stretches = Stretches::of(frames);
    EXPECT_EQ(stretches.length, length) << frames;
    EXPECT_EQ(stretches.count, count) << frames;
  }
}

TEST(SwingMap, AmplitudeOfEachPixel) {
  // Three pixels: one swings by 20 levels at 5 Hz, one by 10 at 12 Hz, one drifts.
  const PictureLayout layout{3, 1, Samples::k8Bit};
  std::vector<Frame> frames;
  for (std::size_t n = 0; n < 200; ++n) {
    frames.push_back({static_cast<unsigned char>(std::lround(swing(5, kRate, n, 20, 100))),
                      static_cast<unsigned char>(std::lround(swing(12, kRate, n, 10, 200))),
                      static_cast<unsigned char>(n)});
  }
  SwingMap map(layout, Stretches::of(200), kRate, {5, 12});
  feed(frames, layout, map);
  const auto five = map.amplitudes(0).values, twelve = map.amplitudes(1).values;
  EXPECT_NEAR(five[0], 20, 0.1);
  EXPECT_NEAR(five[1], 0, 0.1);
  EXPECT_NEAR(five[2], 0, 0.1);
  EXPECT_NEAR(twelve[0], 0, 0.1);
  EXPECT_NEAR(twelve[1], 10, 0.2);
}

TEST(SwingMap, ADriftIsNoSlowSwing) {
  const PictureLayout layout{2, 1, Samples::k8Bit};
  std::vector<Frame> frames;
  for (std::size_t n = 0; n < 200; ++n) {
    frames.push_back({static_cast<unsigned char>(std::lround(swing(1, kRate, n, 20, 100))),
                      static_cast<unsigned char>(n)});
  }
  SwingMap map(layout, Stretches::of(200), kRate, {1});  // two cycles of it
  feed(frames, layout, map);
  EXPECT_NEAR(map.amplitudes(0).values[0], 20, 1);
  EXPECT_NEAR(map.amplitudes(0).values[1], 0, 0.1);
}

TEST(SwingMap, SixteenBitsKeepTheirFractions) {
  const PictureLayout layout{1, 1, Samples::k16Bit};
  std::vector<Frame> frames;
  for (std::size_t n = 0; n < 200; ++n) {
    const auto sample = static_cast<unsigned>(std::lround(swing(5, kRate, n, 64, 100 * 256)));
    frames.push_back({static_cast<unsigned char>(sample), static_cast<unsigned char>(sample >> 8)});
  }
  SwingMap map(layout, Stretches::of(200), kRate, {5});
  feed(frames, layout, map);
  EXPECT_NEAR(map.amplitudes(0).values[0], 0.25, 0.001);
}

TEST(SwingMap, IsHotOnlyInsideTheDisc) {
  const PictureMap map = mapped(scene(300), {5}).amplitudes(0);
  EXPECT_GT(highest(map, [](double d) { return d < Scene::kRadius; }), 2.5F);
  EXPECT_LT(highest(map, [](double d) { return d >= Scene::kRadius; }), 0.5F);
}

TEST(SwingMap, DominantFrequencyFillsTheDiscAndNothingElse) {
  const PictureMap map = mapped(scene(300), {5, 21}).dominant();
  std::size_t lit = 0, inside = 0;
  for (unsigned y = 0; y < map.height; ++y) {
    for (unsigned x = 0; x < map.width; ++x) {
      const float value = map.values[y * map.width + x];
      EXPECT_TRUE(value == 0 || value == 5) << value;
      if (Scene::distance(x, y) < Scene::kRadius - 2) ++inside, lit += value == 5;
    }
  }
  EXPECT_GT(lit, inside * 95 / 100);
  EXPECT_EQ(highest(map, [](double d) { return d > Scene::kRadius + 4; }), 0);
}

TEST(SwingMap, ALostFrameChangesNothing) {
  const auto frames = scene(300);
  const auto whole = mapped(frames, {5}), bridged = mapped(frames, {5}, kLost);
  const auto inside = [](double d) { return d < Scene::kRadius; };
  EXPECT_NEAR(highest(bridged.amplitudes(0), inside), highest(whole.amplitudes(0), inside), 0.05);
}

TEST(SwingMap, LongRecordingsInStretches) {
  const PictureLayout layout{2, 1, Samples::k8Bit};
  std::vector<Frame> frames;
  for (std::size_t n = 0; n < 2500; ++n) {
    frames.push_back({static_cast<unsigned char>(std::lround(swing(5, kRate, n, 20, 100))), 50});
  }
  SwingMap map(layout, Stretches::of(frames.size()), kRate, {5});
  feed(frames, layout, map);
  EXPECT_NEAR(map.amplitudes(0).values[0], 20, 0.1);
  EXPECT_EQ(map.amplitudes(0).values[1], 0);
}

TEST(SwingMap, WithoutFramesIsDark) {
  const SwingMap map(Scene::layout(), Stretches::of(0), kRate, {5});
  EXPECT_EQ(highest(map.amplitudes(0), [](double) { return true; }), 0);
  EXPECT_EQ(highest(map.dominant(), [](double) { return true; }), 0);
}

TEST(Candidates, FindTheMotionOfTheDisc) {
  for (const double hertz : {5., 7.3, 31.}) {
    Candidates candidates(Scene::layout(), Stretches::of(300), kRate);
    feed(scene(300, hertz), Scene::layout(), candidates, kLost);
    const auto found = candidates.frequencies(6);
    ASSERT_EQ(found.size(), 1U) << hertz;
    EXPECT_NEAR(found[0], hertz, kRate / 300 / 4);
  }
}

constexpr PictureLayout kSquare{16, 16, Samples::k8Bit};

/// Pixels that swing at 20 Hz under noise.
std::vector<Frame> noisePixels(double amplitude) {
  std::mt19937 random(7);
  std::normal_distribution<double> noise(100, 3);
  std::vector<Frame> frames;
  for (std::size_t n = 0; n < 400; ++n) {
    Frame frame;
    for (std::size_t pixel = 0; pixel < kSquare.pixelCount(); ++pixel) {
      const double level = swing(20, kRate, n, amplitude, noise(random));
      frame.push_back(static_cast<unsigned char>(std::lround(level)));
    }
    frames.push_back(frame);
  }
  return frames;
}

/// The highest amplitude of frames of which the last `swinging` pixels swing by 40 at 20 Hz.
double highestOf(const PictureLayout& layout, std::size_t swinging) {
  std::vector<Frame> frames;
  for (std::size_t n = 0; n < 200; ++n) {
    Frame frame(layout.pixelCount(), 100);
    const double level = swing(20, kRate, n, 40, 100);
    std::fill(frame.end() - static_cast<std::ptrdiff_t>(swinging), frame.end(),
              static_cast<unsigned char>(std::lround(level)));
    frames.push_back(frame);
  }
  Candidates candidates(layout, Stretches::of(200), kRate);
  feed(frames, layout, candidates);
  const std::vector<double> amplitudes = candidates.spectrum().amplitudes;
  return *std::max_element(amplitudes.begin(), amplitudes.end());
}

TEST(Candidates, HaveTheMeanOfAllPixels) {
  // A quarter of the power is half the amplitude.
  EXPECT_NEAR(highestOf({4, 1, Samples::k8Bit}, 1), 20, 0.2);
}

TEST(Candidates, OfTheLastRowAreOfThatRow) {
  // One pixel of four is looked at, in the last row one of two.
  EXPECT_NEAR(highestOf({64, 65, Samples::k8Bit}, 64), 40 * std::sqrt(1 / 33.), 0.2);
}

TEST(Candidates, NeedNotStandFarAboveTheNoise) {
  Candidates candidates(kSquare, Stretches::of(400), kRate);
  feed(noisePixels(0.4), kSquare, candidates);
  std::vector<double> amplitudes = candidates.spectrum().amplitudes;
  const double highest = *std::max_element(amplitudes.begin(), amplitudes.end());
  std::nth_element(amplitudes.begin(), amplitudes.begin() + 100, amplitudes.end());
  EXPECT_LT(highest, 1.7 * amplitudes[100]);
  const auto found = candidates.frequencies(6);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_NEAR(found[0], 20, 0.1);
}

TEST(Candidates, OfAStillSceneAreNone) {
  Candidates candidates(Scene::layout(), Stretches::of(1100), kRate);
  Scene still(0.8);
  std::vector<Frame> frames;
  frames.reserve(1100);
  for (int n = 0; n < 1100; ++n) frames.push_back(still.frame(0, 0));
  feed(frames, Scene::layout(), candidates);
  EXPECT_TRUE(candidates.frequencies(6).empty());
  EXPECT_DOUBLE_EQ(candidates.spectrum().resolution, kRate / 550);
}

TEST(Candidates, WithoutFramesAreNone) {
  const Candidates candidates(Scene::layout(), Stretches::of(0), kRate);
  EXPECT_TRUE(candidates.frequencies(6).empty());
}

TEST(BoxMean, EndsAtThePicturesEdge) {
  const std::vector<float> values{0, 9, 0, 0,  //
                                  0, 0, 0, 0,  //
                                  0, 0, 0, 0};
  EXPECT_EQ(boxMean(values, 4, 3, 1), (std::vector<float>{2.25F, 1.5F, 1.5F, 0,  //
                                                          1.5F, 1, 1, 0,         //
                                                          0, 0, 0, 0}));
  EXPECT_EQ(boxMean(values, 4, 3, 0), values);
}

}  // namespace

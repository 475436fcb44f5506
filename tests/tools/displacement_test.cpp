#include "tools/kpf/analysis/displacement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "tests/tools/waveforms.h"
#include "tools/kpf/analysis/peaks.h"

namespace {

using namespace KPF_TOOL;
using Frames = std::vector<std::vector<unsigned char>>;

constexpr Box kInDisc{24, 16, 16, 16};

Displacement measured(const Frames& frames, const Box& box, const PictureLayout& layout) {
  MeanPicture mean(layout, grown(box, Displacement::kMargin, layout));
  for (const auto& frame : frames) mean.add(frame.data());
  Displacement displacement(box, mean, 100);
  for (const auto& frame : frames) displacement.add(frame.data());
  return displacement;
}

Frames swinging(double x, double y, double noise = 0.8, std::size_t frames = 200) {
  Scene scene(noise);
  Frames made;
  for (std::size_t n = 0; n < frames; ++n) {
    made.push_back(scene.frame(swing(5, 100, n, x), swing(5, 100, n, y)));
  }
  return made;
}

double amplitude(const Waveform& waveform) {
  const auto peaks = peaksOf(spectrumOf(waveform), 1);
  return peaks.empty() ? 0 : peaks[0].amplitude;
}

/// 32 x 32 pixels of stripes that rise along (u, v), shifted by (dx, dy).
std::vector<unsigned char> stripes(double u, double v, double dx, double dy) {
  std::vector<unsigned char> levels;
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 32; ++x) {
      const double phase = u * (x - dx) + v * (y - dy);
      levels.push_back(static_cast<unsigned char>(
          std::lround(120 + 100 * std::sin(2 * std::numbers::pi * phase / 8))));
    }
  }
  return levels;
}

TEST(Displacement, ATenthOfAPixelUnderNoiseWithinATenth) {
  const auto displacement = measured(swinging(0.1, 0), kInDisc, Scene::layout());
  EXPECT_NEAR(amplitude(displacement.x()), 0.1, 0.01);
  EXPECT_LT(amplitude(displacement.y()), 0.005);
  EXPECT_DOUBLE_EQ(displacement.qualityOfX().shown, 1);
  EXPECT_DOUBLE_EQ(displacement.qualityOfY().shown, 1);
}

TEST(Displacement, BothAxesAtOnceWithTheirSigns) {
  Scene scene(0);
  const auto displacement =
      measured({scene.frame(0.2, -0.1), scene.frame(-0.2, 0.1)}, kInDisc, Scene::layout());
  EXPECT_NEAR(displacement.x().values()[0], 0.2, 0.01);
  EXPECT_NEAR(displacement.y().values()[0], -0.1, 0.01);
  EXPECT_NEAR(displacement.x().values()[1], -0.2, 0.01);
}

TEST(Displacement, WhatDoesNotMoveStandsStill) {
  const auto displacement = measured(swinging(0.1, 0.1), {2, 2, 8, 8}, Scene::layout());
  EXPECT_LT(amplitude(displacement.x()), 0.01);
}

TEST(Displacement, LightIsNoMovement) {
  Scene scene(0);
  const auto displacement =
      measured({scene.frame(0, 0, 20), scene.frame(0, 0, -20)}, kInDisc, Scene::layout());
  EXPECT_NEAR(displacement.x().values()[0], 0, 0.005);
  EXPECT_NEAR(displacement.y().values()[0], 0, 0.005);
}

TEST(Displacement, StripesShowNothingAlongThemselves) {
  const auto displacement =
      measured({stripes(1, 0, 0.1, 0.5), stripes(1, 0, -0.1, -0.5)}, {8, 8, 16, 16}, {32, 32});
  EXPECT_NEAR(displacement.x().values()[0], 0.1, 0.005);
  EXPECT_EQ(displacement.y().values()[0], 0);
  EXPECT_NEAR(displacement.qualityOfX().shown, 1, 1e-6);
  EXPECT_NEAR(displacement.qualityOfY().shown, 0, 1e-6);
}

TEST(Displacement, SlantedStripesShowHalfOfEither) {
  const auto displacement =
      measured({stripes(0.7, 0.7, 0.2, 0), stripes(0.7, 0.7, -0.2, 0)}, {8, 8, 16, 16}, {32, 32});
  EXPECT_NEAR(displacement.qualityOfX().shown, 0.5, 0.01);
  EXPECT_NEAR(displacement.qualityOfY().shown, 0.5, 0.01);
  EXPECT_NEAR(displacement.x().values()[0], 0.1, 0.01);
  EXPECT_NEAR(displacement.y().values()[0], 0.1, 0.01);
}

TEST(Displacement, WithoutTextureNothingShows) {
  Scene scene(0.8);
  Frames frames;
  for (int n = 0; n < 50; ++n) {
    auto frame = scene.frame(0, 0);
    const auto other = scene.frame(0, 0);  // the difference of two is noise alone
    for (std::size_t i = 0; i < frame.size(); ++i) {
      frame[i] = static_cast<unsigned char>(100 + frame[i] - other[i]);
    }
    frames.push_back(frame);
  }
  const auto displacement = measured(frames, kInDisc, Scene::layout());
  EXPECT_EQ(displacement.qualityOfX().shown, 0);
  EXPECT_EQ(displacement.qualityOfY().shown, 0);
  EXPECT_EQ(displacement.x().values()[7], 0);
}

TEST(Displacement, ErrorIsWhatTheValuesScatterBy) {
  const auto displacement = measured(swinging(0, 0, 2), kInDisc, Scene::layout());
  double squares = 0;
  for (const double x : displacement.x().values()) squares += x * x;
  const double scatter = std::sqrt(squares / 200);
  EXPECT_NEAR(displacement.qualityOfX().error, scatter, scatter / 5);
}

TEST(Displacement, LostFramesAreBridged) {
  Scene scene(0);
  const Frames frames{scene.frame(0.2, 0), scene.frame(-0.2, 0)};
  MeanPicture mean(Scene::layout(), grown(kInDisc, Displacement::kMargin, Scene::layout()));
  for (const auto& frame : frames) mean.add(frame.data());
  Displacement displacement(kInDisc, mean, 100);
  displacement.add(frames[0].data());
  displacement.addLost();
  displacement.add(frames[1].data());
  EXPECT_NEAR(displacement.x().values()[1], 0, 0.005);
  EXPECT_TRUE(displacement.y().lost()[1]);
}

TEST(Displacement, BoxesWithoutASlopeAreHarmless) {
  const Frames frames{stripes(1, 0, 0, 0), stripes(1, 0, 0.1, 0)};
  for (const Box& box : {Box{0, 0, 1, 1}, Box{0, 0, 3, 32}, Box{31, 31, 1, 1}, Box{10, 10, 1, 1}}) {
    const auto displacement = measured(frames, box, {32, 32});
    EXPECT_EQ(displacement.x().values().size(), 2U);
    EXPECT_EQ(displacement.qualityOfX().shown, 0);
    EXPECT_EQ(displacement.qualityOfX().error, 0);
  }
  const auto tiny = measured({{1, 2, 3, 4}, {4, 3, 2, 1}}, {0, 0, 2, 2}, {2, 2});
  EXPECT_EQ(tiny.y().values(), (std::vector<double>{0, 0}));
}

}  // namespace

#include "tools/kpf/analysis/spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "tests/tools/waveforms.h"
#include "tools/kpf/analysis/peaks.h"

namespace {

using namespace KPF_TOOL;

Waveform noise(std::size_t frames, double deviation, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal(0, deviation);
  Waveform waveform(100);
  for (std::size_t n = 0; n < frames; ++n) waveform.add(normal(random));
  return waveform;
}

TEST(Spectrum, TellsItsLimits) {
  const Spectrum spectrum = spectrumOf(sine(5, 100, 400));
  EXPECT_DOUBLE_EQ(spectrum.resolution, 0.25);
  EXPECT_DOUBLE_EQ(spectrum.nyquist, 50);
  EXPECT_LE(spectrum.binWidth, 0.125);
  EXPECT_NEAR(spectrum.frequencyOf(spectrum.amplitudes.size() - 1), 50, 1e-9);
}

TEST(Spectrum, HasABinBetweenEveryTwo) {
  EXPECT_DOUBLE_EQ(spectrumOf(sine(5, 100, 400)).binWidth, 0.125);
}

TEST(Peaks, NeedNotReachToTheBinsBeside) {
  Spectrum spectrum{1, 1, 20, std::vector<double>(21, 1)};
  spectrum.amplitudes[10] = 2;
  const auto peaks = peaksOf(spectrum, 5, 1.5);
  ASSERT_EQ(peaks.size(), 1U);
  EXPECT_NEAR(peaks[0].frequency, 10, 1e-9);
}

TEST(Peaks, AreTopsAndNotTheWayDown) {
  Spectrum spectrum{1, 1, 20, std::vector<double>(21, 0.1)};
  for (std::size_t k = 0; k < 7; ++k) spectrum.amplitudes[10 + k] = 10 - static_cast<double>(k);
  ASSERT_EQ(peaksOf(spectrum, 5, 1.5).size(), 1U);
}

TEST(Spectrum, OfTooFewFramesIsEmpty) {
  EXPECT_TRUE(spectrumOf(sine(5, 100, kFewestFrames - 1)).amplitudes.empty());
  EXPECT_FALSE(spectrumOf(sine(5, 100, kFewestFrames)).amplitudes.empty());
  EXPECT_TRUE(peaksOf(spectrumOf(Waveform(100)), 5).empty());
}

TEST(Spectrum, MeanAndTrendAreTakenOff) {
  Waveform waveform(100);
  for (int n = 0; n < 400; ++n) waveform.add(1000 + 3 * n);
  for (const double amplitude : spectrumOf(waveform).amplitudes) EXPECT_LT(amplitude, 1e-3);
}

TEST(Spectrum, ZeroFrequencyIsLeftOut) {
  EXPECT_EQ(spectrumOf(sine(0.1, 100, 400, 50, 9)).amplitudes.front(), 0);
}

TEST(Trend, IsTheLineThatFitsBest) {
  std::vector<double> values{1, 3, 5, 7};
  subtractTrend(values, {1, 2, 2, 1});
  for (const double value : values) EXPECT_NEAR(value, 0, 1e-12);
  std::vector<double> bent{0, 1, 0};
  subtractTrend(bent, {1, 2, 1});
  EXPECT_EQ(bent, (std::vector<double>{-0.5, 0.5, -0.5}));
  std::vector<double> one{5}, none;
  subtractTrend(one, {1});
  subtractTrend(none, {});
  EXPECT_EQ(one, std::vector<double>{0});
}

TEST(HannWindow, IsSymmetricalAndNowhereZero) {
  const auto window = hannWindow(6);
  EXPECT_NEAR(window[0], 0.0669873, 1e-6);
  EXPECT_NEAR(window[2], 0.9330127, 1e-6);
  EXPECT_DOUBLE_EQ(window[1], 0.5);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(window[i], window[5 - i], 1e-12);
}

TEST(Peaks, FrequencyAndAmplitudeWhereverTheyLieBetweenTheBins) {
  for (const double frequency : {1.03, 5., 5.1, 5.2, 12.34, 33.3, 48.5}) {
    for (const std::size_t frames : {400U, 397U, 1024U}) {
      const auto peaks = peaksOf(spectrumOf(sine(frequency, 100, frames, 3, 70)), 5);
      ASSERT_EQ(peaks.size(), 1U) << frequency << " of " << frames;
      EXPECT_NEAR(peaks[0].frequency, frequency, 0.01) << frames;
      EXPECT_NEAR(peaks[0].amplitude, 3, 0.05) << frequency << " of " << frames;
    }
  }
}

TEST(Peaks, UnderNoiseOf20TimesThePower) {
  Waveform waveform(100);
  std::mt19937 random(5);
  std::normal_distribution<double> normal(0, std::sqrt(10.));  // the sine's power is a half
  for (std::size_t n = 0; n < 2000; ++n) waveform.add(swing(5, 100, n) + normal(random));
  const Spectrum spectrum = spectrumOf(waveform);
  const auto peaks = peaksOf(spectrum, 5);
  ASSERT_FALSE(peaks.empty());
  EXPECT_NEAR(peaks[0].frequency, 5, spectrum.binWidth);
  EXPECT_NEAR(peaks[0].amplitude, 1, 0.3);
}

TEST(Peaks, NoiseAloneHasHardlyAny) {
  std::size_t found = 0;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    found += peaksOf(spectrumOf(noise(1000, 1, seed)), 5).size();
  }
  EXPECT_LE(found, 2U);
}

TEST(Peaks, TheHighestComesFirstAndNoMoreThanAskedFor) {
  Waveform waveform(100);
  for (std::size_t n = 0; n < 500; ++n) {
    waveform.add(swing(5, 100, n) + swing(15, 100, n, 4) + swing(30, 100, n, 2));
  }
  const auto peaks = peaksOf(spectrumOf(waveform), 5);
  ASSERT_EQ(peaks.size(), 3U);
  EXPECT_NEAR(peaks[0].frequency, 15, 0.05);
  EXPECT_NEAR(peaks[1].frequency, 30, 0.05);
  EXPECT_NEAR(peaks[2].frequency, 5, 0.05);
  EXPECT_EQ(peaksOf(spectrumOf(waveform), 2).size(), 2U);
}

TEST(Peaks, TwoThreeTimesTheResolutionApartAreTwo) {
  Waveform waveform(100);
  for (std::size_t n = 0; n < 400; ++n) waveform.add(swing(5, 100, n) + swing(5.75, 100, n));
  EXPECT_EQ(peaksOf(spectrumOf(waveform), 5).size(), 2U);
}

TEST(Peaks, SlowerThanTwoCyclesIsDrift) {
  for (const Peak& peak : peaksOf(spectrumOf(sine(1.2, 100, 100)), 5)) {
    EXPECT_LT(peak.amplitude, 0.02) << peak.frequency;  // what the cut ends make
  }
  EXPECT_EQ(peaksOf(spectrumOf(sine(2.6, 100, 100)), 5).size(), 1U);
}

TEST(Peaks, AStillWaveformHasNone) {
  EXPECT_TRUE(peaksOf(spectrumOf(sine(5, 100, 400, 0, 70)), 5).empty());
}

TEST(Peaks, ALostFrameInTheMiddleChangesNone) {
  Waveform broken(100);
  for (std::size_t n = 0; n < 400; ++n) {
    if (n == 200) {
      broken.addLost();
    } else {
      broken.add(swing(5, 100, n, 3, 70));
    }
  }
  const auto whole = peaksOf(spectrumOf(sine(5, 100, 400, 3, 70)), 5);
  const auto bridged = peaksOf(spectrumOf(broken), 5);
  ASSERT_EQ(bridged.size(), whole.size());
  EXPECT_NEAR(bridged[0].frequency, whole[0].frequency, 1e-3);
  EXPECT_NEAR(bridged[0].amplitude, whole[0].amplitude, 1e-3);
}

}  // namespace

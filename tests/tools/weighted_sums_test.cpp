#include "tools/kpf/analysis/weighted_sums.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <vector>

#include "tests/support/kernel_test.h"

namespace {

using namespace KPF_TOOL;

constexpr float kGuard = -7;

class SumKernelsTest : public TEST_SUPPORT::KernelTest<SumKernels> {
 protected:
  SumKernelsTest() : KernelTest(sumKernels) {}

  std::vector<unsigned char> bytes(std::size_t count) {
    std::vector<unsigned char> made(count);
    for (unsigned char& byte : made) byte = static_cast<unsigned char>(random_());
    return made;
  }

  std::vector<float> numbers(std::size_t count) {
    std::vector<float> made(count);
    for (float& number : made) number = static_cast<float>(random_() % 8191) / 16.F - 255.F;
    return made;
  }

  std::mt19937 random_{1};
};
INSTANTIATE_KERNEL_TEST(SumKernelsTest);

TEST_P(SumKernelsTest, LevelsAreTheDifferencesAndNothingElseIsWritten) {
  for (const std::size_t pixels : {0U, 1U, 7U, 13U, 64U, 257U}) {
    const auto frame = bytes(2 * pixels + 1), base = bytes(2 * pixels + 1);
    for (const Samples samples : {Samples::k8Bit, Samples::k16Bit}) {
      std::vector<float> out(pixels + 3, kGuard), wanted = out;
      plain.subtractLevels(frame.data() + 1, base.data() + 1, samples, pixels, wanted.data() + 1);
      kernels->subtractLevels(frame.data() + 1, base.data() + 1, samples, pixels, out.data() + 1);
      EXPECT_EQ(out, wanted) << pixels;
      EXPECT_EQ(out.front(), kGuard);
      EXPECT_EQ(out.back(), kGuard);
    }
  }
}

TEST_P(SumKernelsTest, LevelsOf16BitsKeepTheirFractions) {
  const unsigned char frame[] = {0x10, 0x80, 0x00, 0x00}, base[] = {0x00, 0x7F, 0x10, 0x00};
  float levels[2] = {};
  kernels->subtractLevels(frame, base, Samples::k16Bit, 2, levels);
  EXPECT_EQ(levels[0], 1.0625F);
  EXPECT_EQ(levels[1], -0.0625F);
}

TEST_P(SumKernelsTest, WeightedSumsAreThoseOfThePlainLoopToTheLastBit) {
  constexpr std::size_t kFrames = 2 * kFramesAtOnce, kStride = 260;
  const auto levels = numbers(kFrames * kStride), weights = numbers(kFrames);
  for (const std::size_t pixels : {0U, 1U, 7U, 13U, 64U, 257U}) {
    const LevelTile tile{levels.data() + 1, kStride, pixels, kFrames};
    std::vector<float> sums = numbers(pixels + 1), wanted = sums;
    sums.back() = wanted.back() = kGuard;
    plain.addWeighted(tile, weights.data(), wanted.data());
    kernels->addWeighted(tile, weights.data(), sums.data());
    EXPECT_EQ(sums, wanted) << pixels;
    EXPECT_EQ(sums.back(), kGuard);
  }
}

TEST_P(SumKernelsTest, SquaresAreThoseOfThePlainLoopToTheLastBit) {
  constexpr std::size_t kFrames = 2 * kFramesAtOnce, kStride = 260;
  const auto levels = numbers(kFrames * kStride);
  for (const std::size_t pixels : {0U, 1U, 7U, 13U, 64U, 257U}) {
    const LevelTile tile{levels.data() + 1, kStride, pixels, kFrames};
    std::vector<float> sums(pixels + 1, kGuard), squares = sums, wantedSums = sums, wanted = sums;
    plain.addSquares(tile, wantedSums.data(), wanted.data());
    kernels->addSquares(tile, sums.data(), squares.data());
    EXPECT_EQ(sums, wantedSums) << pixels;
    EXPECT_EQ(squares, wanted) << pixels;
    EXPECT_EQ(sums.back(), kGuard);
  }
}

TEST_P(SumKernelsTest, SumsOfAFewNumbers) {
  // One pixel in eight frames.
  const float levels[] = {1, 2, 3, 4, 5, 6, 7, 8}, weights[] = {1, 0, 0, 0, 0, 0, 0, 2};
  const LevelTile tile{levels, 1, 1, kFramesAtOnce};
  float weighted = 100, sum = 0, square = 0;
  kernels->addWeighted(tile, weights, &weighted);
  kernels->addSquares(tile, &sum, &square);
  EXPECT_EQ(weighted, 117);
  EXPECT_EQ(sum, 36);
  EXPECT_EQ(square, 204);
}

}  // namespace

#include "motionampl/vx_motion_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/kernel_inputs.h"
#include "tests/support/kernel_test.h"

namespace {

using TEST_SUPPORT::filled;
using TEST_SUPPORT::forKernelInputs;
using TEST_SUPPORT::Source;
using VLM_KPF::kGains;
using VLM_KPF::MotionKernels;

using Samples = std::vector<unsigned char>;
using Sums = std::vector<std::uint32_t>;
using Gain = std::array<unsigned char, kGains>;

constexpr std::size_t kGuard = 64;  // elements before and behind an output

Gain gainOf(double factor) {
  Gain gain{};
  for (unsigned d = 0; d < kGains; ++d) {
    gain[d] = static_cast<unsigned char>(static_cast<int>(d * factor));
  }
  return gain;
}

/// `count` elements that begin `offset` bytes off any alignment, among guards.
template <class Element>
class Guarded {
 public:
  Guarded(std::size_t count, std::size_t offset, const Source& source)
      : count_(count), offset_(offset), all_(count + 2 * kGuard + offset) {
    for (Element& element : all_) element = static_cast<Element>(source());
  }

  Element* data() { return all_.data() + kGuard + offset_; }
  std::size_t size() const { return count_; }
  bool operator==(const Guarded& other) const { return all_ == other.all_; }

 private:
  std::size_t count_;
  std::size_t offset_;
  std::vector<Element> all_;
};

class MotionKernelsOf : public TEST_SUPPORT::KernelTest<MotionKernels> {
 protected:
  MotionKernelsOf() : KernelTest(VLM_KPF::motionKernels) {}
};

TEST_P(MotionKernelsOf, AddsAsThePlainLoopDoes) {
  forKernelInputs([this](std::size_t size, std::size_t offset, const Source& source) {
    const auto newest = filled<unsigned char>(offset + size, source);
    Guarded<std::uint32_t> sums(size, offset, source);
    auto expected = sums;
    plain.add(expected.data(), newest.data() + offset, size);
    kernels->add(sums.data(), newest.data() + offset, size);
    ASSERT_TRUE(sums == expected) << size << " samples, offset " << offset;
  });
}

TEST_P(MotionKernelsOf, ExchangesAsThePlainLoopDoes) {
  forKernelInputs([this](std::size_t size, std::size_t offset, const Source& source) {
    const auto newest = filled<unsigned char>(offset + size, source);
    const auto oldest = filled<unsigned char>(size, source);
    Guarded<std::uint32_t> sums(size, offset, source);
    auto expected = sums;
    plain.exchange(expected.data(), newest.data() + offset, oldest.data(), size);
    kernels->exchange(sums.data(), newest.data() + offset, oldest.data(), size);
    ASSERT_TRUE(sums == expected) << size << " samples, offset " << offset;
  });
}

TEST_P(MotionKernelsOf, DividesAsThePlainLoopDoes) {
  for (const std::uint32_t window : {1U, 3U, 9U, 900U, 16449U, 2147483647U}) {
    forKernelInputs([&](std::size_t size, std::size_t offset, const Source& source) {
      const auto sums =
          filled<std::uint32_t>(offset + size, [&] { return source() % (255 * window); });
      Guarded<unsigned char> out(size, offset, [] { return 0xA5U; });
      auto expected = out;
      plain.divide(sums.data() + offset, window, expected.data(), size);
      kernels->divide(sums.data() + offset, window, out.data(), size);
      ASSERT_TRUE(out == expected) << size << " samples, offset " << offset << ", W " << window;
    });
  }
}

TEST_P(MotionKernelsOf, DividesSumsThatNoWindowHolds) {
  forKernelInputs([this](std::size_t size, std::size_t offset, const Source& source) {
    const auto sums = filled<std::uint32_t>(offset + size, source);
    Guarded<unsigned char> out(size, offset, [] { return 0xA5U; });
    auto expected = out;
    plain.divide(sums.data() + offset, 3, expected.data(), size);
    kernels->divide(sums.data() + offset, 3, out.data(), size);
    ASSERT_TRUE(out == expected) << size << " samples, offset " << offset;
  });
}

TEST_P(MotionKernelsOf, AmplifiesAsThePlainLoopDoes) {
  for (const double factor : {0.0, 0.7, 2.3, 3.0, 300.25, -1.0, -2.5}) {
    const Gain gain = gainOf(factor);
    forKernelInputs([&](std::size_t size, std::size_t offset, const Source& source) {
      const auto frame = filled<unsigned char>(offset + size, source);
      const auto reference = filled<unsigned char>(size, source);
      Guarded<unsigned char> out(size, offset, [] { return 0xA5U; });
      auto expected = out;
      plain.amplify(frame.data() + offset, reference.data(), gain.data(), expected.data(), size);
      kernels->amplify(frame.data() + offset, reference.data(), gain.data(), out.data(), size);
      ASSERT_TRUE(out == expected) << size << " samples, offset " << offset << ", x " << factor;
    });
  }
}

/// Every sample beside every reference.
struct AllPairs {
  AllPairs() : frame(65536), reference(65536) {
    for (unsigned i = 0; i < 65536; ++i) {
      frame[i] = static_cast<unsigned char>(i % 256);
      reference[i] = static_cast<unsigned char>(i / 256);
    }
  }
  Samples frame;
  Samples reference;
};

TEST_P(MotionKernelsOf, AmplifiesEveryPairOfSamplesByEveryTable) {
  const AllPairs pairs;
  std::mt19937 random(7);
  std::vector<Gain> gains;
  for (int hundredths = -200; hundredths < 1000; hundredths += 7) {
    gains.push_back(gainOf(hundredths / 100.0));
  }
  for (int i = 0; i < 50; ++i) {
    const double factor = std::ldexp(static_cast<double>(random()), -24);
    gains.push_back(gainOf(factor));
    gains.push_back(gainOf(-factor));
  }
  gains.push_back(gainOf(std::nextafter(0.1, 0)));  // products within a rounding of whole numbers
  gains.emplace_back();
  for (unsigned char& entry : gains.back()) entry = static_cast<unsigned char>(random());
  Samples expected(65536);
  Samples out(65536);
  for (const Gain& gain : gains) {
    plain.amplify(pairs.frame.data(), pairs.reference.data(), gain.data(), expected.data(), 65536);
    kernels->amplify(pairs.frame.data(), pairs.reference.data(), gain.data(), out.data(), 65536);
    ASSERT_TRUE(out == expected) << "slope " << +gain[1] << ", " << +gain[255];
  }
}

/// Divides the sums on both sides of every multiple of `window` up to `most`, where quotients step.
/// Between two steps they can only stay: the arithmetic is monotonic.
void expectRightSteps(const MotionKernels& kernels, std::uint32_t window, std::uint64_t most) {
  Sums sums;
  for (std::uint64_t step = window; step <= most; step += window) {
    sums.insert(sums.end(),
                {static_cast<std::uint32_t>(step - 1), static_cast<std::uint32_t>(step)});
  }
  Samples out(sums.size());
  kernels.divide(sums.data(), window, out.data(), sums.size());
  for (std::size_t i = 0; i < sums.size(); ++i) {
    ASSERT_EQ(out[i], (i + 1) / 2) << sums[i] << " / " << window;
  }
}

TEST_P(MotionKernelsOf, DividesRightAtEveryStepOfEveryWindow) {
  for (std::uint32_t window = 1; window <= 16500; ++window) {
    expectRightSteps(*kernels, window, std::uint64_t{255} * window);
    if (HasFatalFailure()) return;
  }
}

TEST_P(MotionKernelsOf, DividesRightAtTheStepsOfHugeWindows) {
  for (const std::uint32_t window : {65536U, 4194303U, 4194304U, 4194305U, 16843009U}) {
    expectRightSteps(*kernels, window, std::uint64_t{255} * window);
    if (HasFatalFailure()) return;
  }
}

// Quotients of 9 bits and more, and sums that are negative numbers to a signed conversion.
TEST_P(MotionKernelsOf, DividesSumsThatWindowsCannotReach) {
  for (std::uint32_t window = 1; window <= 8193; ++window) {
    for (const std::uint32_t sum : {256 * window - 1, 256 * window, 0x7FFFFFFFU, 0x80000000U,
                                    0xFFFFFFFFU - window, 0U - window, 1U - window, 0xFFFFFFFFU}) {
      Sums sums(64, 0);
      Samples out(sums.size());
      sums[window % sums.size()] = sum;
      kernels->divide(sums.data(), window, out.data(), sums.size());
      ASSERT_EQ(out[window % sums.size()], sum / window % 256) << sum << " / " << window;
    }
  }
}

// Huge windows just after the start: the sums are still small.
TEST_P(MotionKernelsOf, DividesSmallSumsRightInHugeWindows) {
  constexpr std::uint32_t kSmall = (1U << 22) - 1;
  for (std::uint32_t window = 16449; window <= kSmall; window += 211) {
    expectRightSteps(*kernels, window, kSmall);
    if (HasFatalFailure()) return;
  }
}

INSTANTIATE_KERNEL_TEST(MotionKernelsOf);

}  // namespace

// One amplifier used by several threads; for ThreadSanitizer above all.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <thread>

#include "interface/vlm_internal_tables.h"
#include "tests/motionampl/frames.h"
#include "vlm_internal.h"

namespace {

using TEST_MOTIONAMPL::newFrame;
using TEST_MOTIONAMPL::Samples;

constexpr int kFrames = 400;
constexpr std::size_t kSamples = 4096;

/// Frames are constant: 60, 61, ... 89, 60, ...
unsigned char levelOf(int frame) { return static_cast<unsigned char>(60 + frame % 30); }

// Two frames of at most 89 and W = 3: the reference of a frame lies between 40 and 59 in any mix
// of old and new, and the factor is 0 or 1.
bool plausible(const Samples& out) {
  for (const unsigned char sample : out) {
    if (sample != out.front()) return false;
  }
  return out.front() >= 60 && out.front() <= 89 + 49;
}

TEST(AmplifierThreads, AddAmplifyPollAndTurnTheFactorAtOnce) {
  const VXP_MA_CONFIGURATION parameters{25.0, 20.0, 64, 64, 1.0};
  const unsigned amplifier = vxCreateMotionAmplifier(&parameters);
  vxMAAddFrame(amplifier, newFrame(Samples(kSamples, levelOf(0))));
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0};

  std::thread adding([&] {
    for (int i = 1; i < kFrames; ++i) {
      vxMAAddFrame(amplifier, newFrame(Samples(kSamples, levelOf(i))));
    }
    done = true;
  });
  std::thread amplifying([&] {
    while (!vxMAAvailable(amplifier)) std::this_thread::yield();
    Samples out(kSamples);
    do {
      if (vxMAGetFrame(amplifier, out.data()) != 0 || !plausible(out)) ++wrong;
      if (vxMAGetRefFrame(amplifier, out.data()) != 0) ++wrong;
    } while (!done);
  });
  std::thread turning([&] {
    bool available = false;
    for (int factor = 0; !done; factor = 1 - factor) {
      vxMAUpdateAmpFactor(amplifier, factor);
      if (available && !vxMAAvailable(amplifier)) ++wrong;
      available = vxMAAvailable(amplifier);
      if (vxMAGetRefWindowSize(amplifier) != 3) ++wrong;
    }
  });
  adding.join();
  amplifying.join();
  turning.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(vxCloseMotionAmplifier(amplifier), 25);
  VLM_INTERNAL::maVector.clear();
}

}  // namespace

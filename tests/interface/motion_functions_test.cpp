// The amplifier's functions: handles, messages, results.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include "interface/vlm_internal_tables.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using TEST_SUPPORT::Bytes;
using VLM_INTERNAL::maVector;

/// A frame as the amplifier takes it over.
unsigned char* newFrame(const Bytes& samples) {
  auto* const frame = static_cast<unsigned char*>(::operator new(samples.size()));
  std::copy(samples.begin(), samples.end(), frame);
  return frame;
}

class MotionFunctions : public TEST_SUPPORT::LibraryTest {
 protected:
  /// Window of W = 3, frames of two samples, gain 3.
  static unsigned create() {
    const VXP_MA_CONFIGURATION parameters{25.0, 20.0, 2, 1, 3.0};
    return vxCreateMotionAmplifier(&parameters);
  }

  static Bytes frameOf(unsigned amplifier) {
    Bytes out(2, 0xEE);
    EXPECT_EQ(vxMAGetFrame(amplifier, out.data()), 0);
    return out;
  }

  static Bytes referenceOf(unsigned amplifier) {
    Bytes out(2, 0xEE);
    EXPECT_EQ(vxMAGetRefFrame(amplifier, out.data()), 0);
    return out;
  }

  unsigned char buffer[2] = {0xEE, 0xEE};
};

struct Function {
  const char* name;
  int onZero;    // result for handle 0 and handles out of range
  int onClosed;  // result for a closed handle
  std::function<int(unsigned)> call;
};

unsigned char scratch[2];

// All but vxMAAddFrame, which has words of its own.
const Function kFunctions[] = {
    {"vxCloseMotionAmplifier", 10, 10, vxCloseMotionAmplifier},
    {"vxMAAvailable", 0, 0, [](unsigned h) { return vxMAAvailable(h) ? 1 : 0; }},
    {"vxMAGetFrame", 10, 10, [](unsigned h) { return vxMAGetFrame(h, scratch); }},
    {"vxMAGetRefFrame", 10, 10, [](unsigned h) { return vxMAGetRefFrame(h, scratch); }},
    {"vxMAGetRefWindowSize", 0, 10, vxMAGetRefWindowSize},
    {"vxMAUpdateAmpFactor", -5, -5,
     [](unsigned h) {
       vxMAUpdateAmpFactor(h, 2);
       return -5;
     }},
};

std::string asPointer(unsigned handle) {
  char text[64];
  // NOLINTNEXTLINE(performance-no-int-to-ptr): only printed
  std::snprintf(text, sizeof text, "%p", reinterpret_cast<void*>(std::uintptr_t{handle}));
  return text;
}

TEST_F(MotionFunctions, WorkedExampleStepByStep) {
  const unsigned amplifier = create();
  EXPECT_EQ(vxMAGetRefWindowSize(amplifier), 3);
  EXPECT_EQ(vxMAAddFrame(amplifier, newFrame({10, 200})), 0);
  EXPECT_FALSE(vxMAAvailable(amplifier));
  EXPECT_EQ(vxMAGetRefFrame(amplifier, buffer), 26);
  EXPECT_EQ(output(), "");
  EXPECT_EQ(vxMAGetFrame(amplifier, buffer), 26);
  EXPECT_EQ(output(),
            "amplifyFrame: Unable to get the reference frame!\n"
            "vxMAGetFrame: amplifyFrame() failed!\n");
  EXPECT_EQ(buffer[0], 0xEE);
  EXPECT_EQ(buffer[1], 0xEE);

  vxMAAddFrame(amplifier, newFrame({20, 100}));
  EXPECT_TRUE(vxMAAvailable(amplifier));
  EXPECT_EQ(referenceOf(amplifier), (Bytes{10, 100}));
  EXPECT_EQ(frameOf(amplifier), (Bytes{50, 100}));
  vxMAAddFrame(amplifier, newFrame({90, 50}));
  EXPECT_EQ(referenceOf(amplifier), (Bytes{36, 50}));
  EXPECT_EQ(frameOf(amplifier), (Bytes{252, 50}));
  vxMAAddFrame(amplifier, newFrame({30, 250}));
  EXPECT_EQ(referenceOf(amplifier), (Bytes{40, 100}));
  EXPECT_EQ(frameOf(amplifier), (Bytes{30, 255}));
  EXPECT_EQ(vxCloseMotionAmplifier(amplifier), 25);
  EXPECT_EQ(output(), "");
}

TEST_F(MotionFunctions, HandlesAreIndependentOfTheStreams) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.frameCount = 1;
  EXPECT_EQ(vxCreatePackStreamer(folder / "a.kpf", configuration), 1U);
  EXPECT_EQ(vxCreatePackStreamer(folder / "b.kpf", configuration), 2U);
  EXPECT_EQ(create(), 1U);
  EXPECT_EQ(create(), 2U);
  EXPECT_EQ(vxCloseMotionAmplifier(1), 25);
  EXPECT_EQ(vxIsPackStreamerFinished(1), 3);
  EXPECT_EQ(create(), 1U);
}

TEST_F(MotionFunctions, HandleZeroIsCalledNull) {
  for (const Function& function : kFunctions) {
    output();
    EXPECT_EQ(function.call(0), function.onZero) << function.name;
    EXPECT_EQ(output(), std::string(function.name) + ": maHandle is nullptr!\n");
  }
}

TEST_F(MotionFunctions, HandleOutOfRangeIsPrintedAsAPointer) {
  create();
  for (const Function& function : kFunctions) {
    for (const unsigned handle : {3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
      output();
      EXPECT_EQ(function.call(handle), function.onZero) << function.name;
      EXPECT_EQ(output(), std::string(function.name) + ": maHandle (" + asPointer(handle) +
                              ") is invalid!\n");
    }
  }
}

TEST_F(MotionFunctions, ClosedHandleIsInvalid) {
  vxCloseMotionAmplifier(create());
  for (const Function& function : kFunctions) {
    output();
    EXPECT_EQ(function.call(1), function.onClosed) << function.name;
    EXPECT_EQ(output(),
              std::string(function.name) + ": maHandle (" + asPointer(1) + ") is invalid!\n");
  }
}

TEST_F(MotionFunctions, HandleOneBehindTheLastThrows) {
  create();
  for (const Function& function : kFunctions) {
    EXPECT_THROW(function.call(2), std::out_of_range) << function.name;
  }
  EXPECT_THROW(vxMAAddFrame(2, buffer), std::out_of_range);
  EXPECT_EQ(output(), "");
}

TEST_F(MotionFunctions, AddingChecksZeroThenNullThenTheRange) {
  create();
  EXPECT_EQ(vxMAAddFrame(0, nullptr), 10);
  EXPECT_EQ(output(), "vxMAAddFrame: maHandle is 0!\n");
  EXPECT_EQ(vxMAAddFrame(99, nullptr), 11);
  EXPECT_EQ(vxMAAddFrame(2, nullptr), 11);  // would throw with a frame
  EXPECT_EQ(output(), "vxMAAddFrame: framePtr is nullptr!\nvxMAAddFrame: framePtr is nullptr!\n");
  EXPECT_EQ(vxMAAddFrame(99, buffer), 10);
  EXPECT_EQ(output(), "vxMAAddFrame: maHandle (99) is invalid!\n");
  EXPECT_EQ(vxMAAddFrame(0xFFFFFFFF, buffer), 10);
  EXPECT_EQ(output(), "vxMAAddFrame: maHandle (-1) is invalid!\n");
  vxCloseMotionAmplifier(1);
  EXPECT_EQ(vxMAAddFrame(1, buffer), 10);
  EXPECT_EQ(output(), "vxMAAddFrame: maHandle (1) is invalid!\n");
}

TEST_F(MotionFunctions, FactorIsSetToAWholeNumberAndTheWindowStays) {
  const unsigned amplifier = create();
  vxMAAddFrame(amplifier, newFrame({10, 200}));
  vxMAAddFrame(amplifier, newFrame({20, 100}));
  vxMAUpdateAmpFactor(amplifier, 5);
  EXPECT_EQ(maVector[0]->ampFactor, 5.0);
  EXPECT_TRUE(vxMAAvailable(amplifier));
  EXPECT_EQ(frameOf(amplifier), (Bytes{70, 100}));
  vxMAUpdateAmpFactor(amplifier, -1);
  EXPECT_EQ(maVector[0]->ampFactor, -1.0);
}

TEST_F(MotionFunctions, WindowSizeCanBeNegative) {
  const VXP_MA_CONFIGURATION parameters{-60.0, 20.0, 2, 1, 3.0};
  const unsigned amplifier = vxCreateMotionAmplifier(&parameters);
  EXPECT_EQ(vxMAGetRefWindowSize(amplifier), -9);
  EXPECT_FALSE(vxMAAvailable(amplifier));
}

TEST_F(MotionFunctions, NegativeFrameSizeThrowsAndIssuesNoHandle) {
  const VXP_MA_CONFIGURATION parameters{25.0, 20.0, -1, 1, 3.0};
  EXPECT_THROW(vxCreateMotionAmplifier(&parameters), std::length_error);
  EXPECT_TRUE(maVector.empty());
}

}  // namespace

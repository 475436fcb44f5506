// Amplifies a movement that is too small to see: amplify_motion
//
// A soft edge swings by a twentieth of a pixel, 5 times a second, seen 100 times a second. Prints
// how far the grey levels at the edge swing before and after.
#include <vlm_internal.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <new>
#include <numbers>
#include <vector>

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 16;
constexpr double kRate = 100;  // frames per second
constexpr double kMotion = 5;  // hertz
constexpr int kEdge = 32;      // column

/// A frame as the amplifier takes it over: from ::operator new, and freed by the library.
unsigned char* newFrame(int number) {
  auto* const frame = static_cast<unsigned char*>(::operator new(kWidth* kHeight));
  const double shift = 0.05 * std::sin(2 * std::numbers::pi * kMotion * number / kRate);
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const double distance = i % kWidth - kEdge - shift;
    frame[i] = static_cast<unsigned char>(std::lround(80 + 60 * std::tanh(distance)));
  }
  return frame;
}

struct Swing {
  int low = 255;
  int high = 0;
  void add(int level) { low = std::min(low, level), high = std::max(high, level); }
};

}  // namespace

int main() {
  const VXP_MA_CONFIGURATION parameters{kRate, kMotion, kWidth, kHeight, 8.0};
  const unsigned amplifier = vxCreateMotionAmplifier(&parameters);
  std::vector<unsigned char> shown(kWidth * kHeight);
  Swing before;
  Swing after;
  for (int number = 0; number < 200; ++number) {
    unsigned char* const frame = newFrame(number);
    const int level = frame[kEdge];
    vxMAAddFrame(amplifier, frame);  // from here on the frame is the library's
    if (!vxMAAvailable(amplifier)) continue;
    vxMAGetFrame(amplifier, shown.data());
    before.add(level);
    after.add(shown[kEdge]);
  }
  vxCloseMotionAmplifier(amplifier);
  std::printf("the edge swings by %d grey levels, amplified by %d\n", before.high - before.low,
              after.high - after.low);
  return after.high - after.low > before.high - before.low ? 0 : 1;
}

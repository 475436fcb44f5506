#include "tools/kpf/analysis/clean_amplifier.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tools/kpf/frames/amplifier.h"

namespace {

using KPF_TOOL::Amplifier;
using KPF_TOOL::CleanAmplifier;
using Frame = std::vector<unsigned char>;

Frame amplified(const CleanAmplifier& amplifier, const Frame& frame, const Frame& reference) {
  Frame out(frame.size());
  amplifier.amplify(frame, reference, out);
  return out;
}

/// A picture of every level.
Frame everyLevel() {
  Frame levels;
  for (int level = 0; level < 256; ++level) levels.push_back(static_cast<unsigned char>(level));
  return levels;
}

TEST(CleanAmplifier, AStillSceneStaysAsItIsWhateverTheWindow) {
  for (const int window : {2, 3, 4, 5, 6, 15, 60, 255, 256, 257, 900, 2147483647}) {
    const CleanAmplifier amplifier(window, 1000);
    Frame reference;
    for (long long level = 0; level < 256; ++level) {
      reference.push_back(static_cast<unsigned char>(level * (window - 1LL) / window));
    }
    EXPECT_EQ(amplified(amplifier, everyLevel(), reference), everyLevel()) << window;
  }
}

TEST(CleanAmplifier, AStillSceneStaysAsItIsThroughTheLibrary) {
  Amplifier library({100, 5, 16, 16, 8});  // a window of 60
  for (int n = 0; n < 70; ++n) library.add(everyLevel());
  EXPECT_NE(library.amplified(), everyLevel());  // its own way brightens
  const CleanAmplifier amplifier(60, 8);
  EXPECT_EQ(amplified(amplifier, everyLevel(), library.reference()), everyLevel());
}

TEST(CleanAmplifier, DifferencesCountWhicheverSignTheyHave) {
  // A window of 6: a mean of 59 over 5 frames leaves a reference of 49.
  const CleanAmplifier amplifier(6, 2.5);
  EXPECT_EQ(amplified(amplifier, {63, 55, 62, 56}, {49, 49, 49, 49}), (Frame{73, 45, 70, 48}));
}

TEST(CleanAmplifier, SaturatesInsteadOfWrapping) {
  const CleanAmplifier amplifier(6, 100);
  EXPECT_EQ(amplified(amplifier, {70, 50}, {50, 50}), (Frame{255, 0}));
  const CleanAmplifier endless(6, std::numeric_limits<double>::infinity());
  EXPECT_EQ(amplified(endless, {70, 50, 60}, {50, 50, 50}), (Frame{255, 0, 60}));
}

TEST(CleanAmplifier, TheMeanIsTheWholeLevelThatTheReferenceAllows) {
  const CleanAmplifier amplifier(6, 1);
  Frame out(5);
  // 49 x 6 / 5 = 58.8 to 59.8; 50 stands for 60 to 61, whichever is nearer.
  amplifier.correct(Frame{0, 255, 0, 255, 61}, Frame{49, 49, 50, 50, 50}, out);
  EXPECT_EQ(out, (Frame{59, 59, 60, 61, 61}));
}

TEST(CleanAmplifier, GainsOfEveryKind) {
  const Frame frame{70, 50}, reference{50, 50};
  CleanAmplifier amplifier(6, 0);
  EXPECT_EQ(amplified(amplifier, frame, reference), frame);
  amplifier.setGain(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(amplified(amplifier, frame, reference), frame);
  amplifier.setGain(-1);  // the motion turned round
  EXPECT_EQ(amplified(amplifier, frame, reference), (Frame{61, 60}));
}

TEST(CleanAmplifier, WithoutAWindowTheReferenceIsTaken) {
  const CleanAmplifier amplifier(1, 2);
  EXPECT_EQ(amplified(amplifier, {70, 50, 60}, {60, 60, 60}), (Frame{90, 30, 60}));
}

}  // namespace

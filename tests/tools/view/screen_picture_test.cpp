#include "tools/kpf/view/screen_picture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;
using Bytes = std::vector<unsigned char>;

const Tone kWhole(0, 4095, 1);

Bytes shown(const Bytes& samples, std::size_t width, const Cutout& cutout,
            const Tone& tone = kWhole) {
  Bytes out;
  appendShown(out, samples, width, cutout, tone);
  return out;
}

TEST(Tone, RunsFromBlackToWhite) {
  const Tone tone(1000, 3000, 1);
  EXPECT_EQ(tone.of(0), 0);
  EXPECT_EQ(tone.of(1000 << 4), 0);
  EXPECT_EQ(tone.of(2000 << 4), 128);  // 127.5
  EXPECT_EQ(tone.of(3000 << 4), 255);
  EXPECT_EQ(tone.of(65535), 255);
}

TEST(Tone, TellsAll12BitsApart) {
  const Tone tone(2000, 2004, 1);
  const int wanted[] = {0, 64, 128, 191, 255};
  for (unsigned i = 0; i < 5; ++i) EXPECT_EQ(tone.of((2000 + i) << 4), wanted[i]) << i;
}

TEST(Tone, GammaLiftsTheDarkParts) {
  // A quarter of the way, to the power of a half: the middle.
  EXPECT_EQ(Tone(0, 4000, 2).of(1000 << 4), 128);
  EXPECT_EQ(Tone(0, 4000, 0.5).of(2000 << 4), 64);
}

TEST(Tone, WithoutARangeIsAStep) {
  for (const double high : {2000.0, 1000.0}) {
    const Tone tone(2000, high, 1);
    EXPECT_EQ(tone.of(2000 << 4), 0);
    EXPECT_EQ(tone.of(2001 << 4), 255);
  }
}

TEST(Cutout, OfNothingIsAll) {
  const Cutout all = cutoutOf("", 30, 20);
  EXPECT_EQ(all.width, 30U);
  EXPECT_EQ(all.height, 20U);
  EXPECT_EQ(all.outWidth, 30U);
  EXPECT_EQ(all.outHeight, 20U);
}

TEST(Cutout, IsClippedToThePicture) {
  for (const char* text :
       {"20,10,100,100,100,100", "20,10,4294967295,4294967295,1e9,1e9", "20,10,1e300,10,10,10"}) {
    const Cutout cut = cutoutOf(text, 30, 20);
    EXPECT_EQ(cut.left + cut.width, 30U) << text;
    EXPECT_EQ(cut.top + cut.height, 20U) << text;
    EXPECT_EQ(cut.outWidth, 10U) << text;
    EXPECT_EQ(cut.outHeight, 10U) << text;
  }
  const Cutout outside = cutoutOf("500,-3,0,0,0,0", 30, 20);
  EXPECT_EQ(outside.left, 29U);
  EXPECT_EQ(outside.top, 0U);
  EXPECT_EQ(outside.width * outside.height * outside.outWidth * outside.outHeight, 1U);
}

TEST(Cutout, IsNeverEnlarged) {
  const Cutout cut = cutoutOf("2,3,4,5,400,500", 30, 20);
  EXPECT_EQ(cut.outWidth, 4U);
  EXPECT_EQ(cut.outHeight, 5U);
}

TEST(Cutout, OfOtherTextIsRefused) {
  for (const char* text :
       {"1", "1,2,3,4,5", "1,2,3,4,5,6,7", "a,2,3,4,5,6", "1,2,3,4,5,6 ", "nan,0,0,0,0,0", ","}) {
    EXPECT_THROW(cutoutOf(text, 30, 20), ToolError) << text;
  }
}

TEST(Shown, SamplesAsTheyAre) {
  EXPECT_EQ(shown({0, 10, 20, 30, 40, 50}, 3, {0, 0, 3, 2, 3, 2}, Tone(0, 4080, 1)),
            (Bytes{0, 10, 20, 30, 40, 50}));
}

TEST(Shown, PartOfThePicture) {
  EXPECT_EQ(shown({0, 10, 20, 30, 40, 50}, 3, {1, 1, 2, 1, 2, 1}, Tone(0, 4080, 1)),
            (Bytes{40, 50}));
}

TEST(Shown, SmallerByTheMeanOfWhatLiesBehind) {
  // Five columns on two: the first two, the last three.
  EXPECT_EQ(shown({10, 30, 0, 30, 60}, 5, {0, 0, 5, 1, 2, 1}, Tone(0, 4080, 1)), (Bytes{20, 30}));
  EXPECT_EQ(shown({0, 255, 255, 0}, 2, {0, 0, 2, 2, 1, 1}, Tone(0, 4080, 1)), (Bytes{128}));
}

TEST(Shown, OfSixteenBits) {
  const std::vector<std::uint16_t> samples{0, 2000 << 4, 4095 << 4, 4095 << 4};
  Bytes out{7};
  appendShown(out, samples, 2, {0, 0, 2, 2, 2, 2}, Tone(1000, 3000, 1));
  EXPECT_EQ(out, (Bytes{7, 0, 128, 255, 255}));  // behind what was there
}

TEST(Marks, TheStrongestOfThoseBehindAPixelIsShown) {
  const Bytes marks{0, 0, 0, 1,  //
                    0, 0, 2, 1};
  Bytes out;
  appendMarks(out, marks, 4, {0, 0, 4, 2, 2, 1});
  EXPECT_EQ(out, (Bytes{0, 2}));
  out.clear();
  appendMarks(out, marks, 4, {3, 0, 1, 2, 1, 2});
  EXPECT_EQ(out, (Bytes{1, 1}));
}

}  // namespace

#include "tools/kpf/frames/canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "tools/kpf/frames/comparison.h"

namespace {

using namespace KPF_TOOL;

/// The canvas as rows of text: '.' black, '#' white, '+' anything else.
std::vector<std::string> drawn(const unsigned char* rows, unsigned width, unsigned height) {
  std::vector<std::string> text;
  for (unsigned y = 0; y < height; ++y) {
    std::string row;
    for (unsigned x = 0; x < width; ++x) {
      const unsigned char sample = rows[y * width + x];
      row += sample == 0 ? '.' : sample == 0xFF ? '#' : '+';
    }
    text.push_back(row);
  }
  return text;
}

std::vector<std::string> written(const std::string& text, unsigned width, unsigned height,
                                 unsigned x = 0, unsigned y = 0) {
  Canvas canvas(width, height);
  canvas.write(text, x, y);
  return drawn(canvas.rows(), width, height);
}

bool isBlack(const std::vector<std::string>& rows) {
  return std::all_of(rows.begin(), rows.end(), [](const std::string& row) {
    return row.find_first_not_of('.') == std::string::npos;
  });
}

TEST(Canvas, IsBlackAtFirst) {
  const Canvas canvas(5, 3);
  EXPECT_EQ(canvas.width(), 5U);
  EXPECT_EQ(canvas.height(), 3U);
  EXPECT_TRUE(isBlack(drawn(canvas.rows(), 5, 3)));
}

TEST(Canvas, PlacesAPictureRowByRow) {
  Canvas canvas(5, 4);
  const unsigned char picture[] = {1, 2, 3, 4, 5, 6};
  canvas.place(picture, 3, 2, 1, 2);
  const unsigned char expected[] = {0, 0, 0, 0, 0,  //
                                    0, 0, 0, 0, 0,  //
                                    0, 1, 2, 3, 0,  //
                                    0, 4, 5, 6, 0};
  EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), canvas.rows()));
}

TEST(Canvas, PlacesAPictureOfItsOwnSize) {
  Canvas canvas(2, 2);
  const unsigned char picture[] = {9, 8, 7, 6};
  canvas.place(picture, 2, 2, 0, 0);
  EXPECT_TRUE(std::equal(std::begin(picture), std::end(picture), canvas.rows()));
}

TEST(Canvas, WritesLettersOfTwoPixelsADot) {
  EXPECT_EQ(written("T", 12, 14), (std::vector<std::string>{
                                      "##########..",
                                      "##########..",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                      "....##......",
                                  }));
}

TEST(Canvas, WritesTheLetterThatIsAskedFor) {
  // The first, the last, and a sign: each is found at its own place in the table.
  EXPECT_EQ(written("L", 12, 14)[12], "##########..");
  EXPECT_EQ(written("A", 12, 14)[0], "..######....");
  EXPECT_EQ(written("9", 12, 14)[6], "..########..");
  EXPECT_EQ(written(".", 12, 14)[12], "..####......");
  EXPECT_EQ(written("/", 12, 14)[0], "........##..");
  EXPECT_EQ(written(")", 12, 14)[6], "......##....");
}

TEST(Canvas, WritesAtAPlace) {
  const auto rows = written("I", 16, 20, 3, 5);
  EXPECT_EQ(rows[4], "................");
  EXPECT_EQ(rows[5], ".....######.....");
  EXPECT_EQ(rows[7], ".......##.......");
  EXPECT_EQ(rows[19], "................");
}

TEST(Canvas, LettersStandBesideEachOther) {
  EXPECT_EQ(written("LL", 24, 14)[0], "##..........##..........");
}

TEST(Canvas, BlanksAndUnknownCharactersTakeTheirRoom) {
  EXPECT_EQ(written("L L", 36, 14)[0], "##......................##..........");
  EXPECT_EQ(written("L?L", 36, 14)[0], written("L L", 36, 14)[0]);
  EXPECT_TRUE(isBlack(written("abc\xff", 48, 14)));
}

TEST(Canvas, WholeLettersAreCutAtTheRightEdge) {
  EXPECT_EQ(written("LL", 23, 14)[0], "##.....................");
  EXPECT_TRUE(isBlack(written("L", 11, 14)));
  EXPECT_TRUE(isBlack(written("L", 12, 14, 1, 0)));
}

TEST(Canvas, ACaptionFitsItsHeight) {
  const unsigned margin = Canvas::kCaptionMargin;
  const auto rows = written("E", 40, Canvas::kCaptionHeight, margin, margin);
  EXPECT_EQ(rows[margin - 1].find('#'), std::string::npos);
  EXPECT_NE(rows[margin].find('#'), std::string::npos);
  EXPECT_NE(rows[Canvas::kCaptionHeight - margin - 1].find('#'), std::string::npos);
  EXPECT_EQ(rows[Canvas::kCaptionHeight - margin].find('#'), std::string::npos);
}

/// 30 x 2 pixels each, so that a letter fits above every picture.
class ComparisonOfThree : public testing::Test {
 protected:
  static constexpr unsigned kWidth = 30;
  static constexpr unsigned kHeight = 2;

  std::vector<std::string> rowsOf(unsigned char a, unsigned char b, unsigned char c) {
    const std::vector<unsigned char> one(kWidth * kHeight, a), two(kWidth * kHeight, b),
        three(kWidth * kHeight, c);
    return drawn(comparison_.of({one.data(), two.data(), three.data()}), comparison_.width(),
                 comparison_.height());
  }

  Comparison comparison_{kWidth, kHeight, {"L", "I", "T"}};
};

TEST_F(ComparisonOfThree, HasRoomForPicturesGapsAndCaptions) {
  EXPECT_EQ(comparison_.width(), 30U + 8 + 30 + 8 + 30);
  EXPECT_EQ(comparison_.height(), 28U + 2);
}

TEST_F(ComparisonOfThree, EachPictureStandsInItsPlace) {
  const std::string black(8, '.'), dark(30, '.'), grey(30, '+'), white(30, '#');
  auto rows = rowsOf(7, 0xFF, 0);
  EXPECT_EQ(rows[28], grey + black + white + black + dark);
  EXPECT_EQ(rows[29], rows[28]);
  rows = rowsOf(0, 7, 0xFF);
  EXPECT_EQ(rows[28], dark + black + grey + black + white);
}

TEST_F(ComparisonOfThree, EachPictureHasItsCaptionAbove) {
  const auto rows = rowsOf(0, 0, 0);
  const unsigned top = Canvas::kCaptionMargin;
  // L, I and T begin with a stem, a bar of six and one of ten pixels.
  std::string expected(comparison_.width(), '.');
  expected.replace(7, 2, "##").replace(38 + 9, 6, "######").replace(76 + 7, 10, "##########");
  EXPECT_EQ(rows[top], expected);
}

TEST_F(ComparisonOfThree, TheNextPicturesLeaveTheCaptions) {
  const auto before = rowsOf(7, 7, 7);
  const auto after = rowsOf(0xFF, 0xFF, 0xFF);
  EXPECT_TRUE(std::equal(before.begin(), before.begin() + 28, after.begin()));
  EXPECT_EQ(after[29], std::string(30, '#') + "........" + std::string(30, '#') + "........" +
                           std::string(30, '#'));
}

}  // namespace

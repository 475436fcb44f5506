// What is shown in the place of lost frames, and how they are told.
#include "tools/kpf/frames/lost_frames.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

using namespace KPF_TOOL;
using Bytes = std::vector<unsigned char>;

/// Notes what it is given; an empty picture stands for a place that was passed over.
class Noted : public PictureOutput {
 public:
  void add(const unsigned char* rows) override { pictures.emplace_back(rows, rows + kSize); }
  void pass() override { pictures.emplace_back(); }
  void finish() override {}

  static constexpr std::size_t kSize = 3;
  std::vector<Bytes> pictures;
};

const Bytes kBefore = {7, 8, 9};

Bytes shownAs(LostShown how, bool* added) {
  Noted output;
  LostFrames lost(how);
  *added = lost.add(4, output, kBefore.data(), Noted::kSize);
  EXPECT_EQ(output.pictures.size(), 1U);
  return output.pictures.at(0);
}

LostFrames lostAt(std::initializer_list<unsigned> numbers) {
  Noted output;
  LostFrames lost(LostShown::kSkip);
  for (const unsigned number : numbers) lost.add(number, output, nullptr, 0);
  return lost;
}

TEST(LostFrames, EachIsShownAsTheUserWants) {
  bool added = false;
  EXPECT_EQ(shownAs(LostShown::kRepeat, &added), kBefore);
  EXPECT_TRUE(added);
  EXPECT_EQ(shownAs(LostShown::kBlack, &added), Bytes(3));
  EXPECT_TRUE(added);
  EXPECT_EQ(shownAs(LostShown::kSkip, &added), Bytes());
  EXPECT_FALSE(added);
}

TEST(LostFrames, PicturesAreRepeatedAndPipesTellWhatWasRecordedUnlessTheUserSaysOtherwise) {
  EXPECT_EQ(lostShownFor("", false), LostShown::kRepeat);
  EXPECT_EQ(lostShownFor("", true), LostShown::kBlack);
  EXPECT_EQ(lostShownFor("repeat", true), LostShown::kRepeat);
  EXPECT_EQ(lostShownFor("black", false), LostShown::kBlack);
  EXPECT_EQ(lostShownFor("skip", true), LostShown::kSkip);
}

TEST(LostFrames, NeighboursAreOneRun) {
  const LostFrames lost = lostAt({7, 20, 21, 22, 24});
  EXPECT_EQ(lost.count(), 5U);
  EXPECT_EQ(lost.text(), "7, 20-22, 24");
  EXPECT_EQ(lost.list(), "7\n20-22\n24\n");
}

TEST(LostFrames, NoneIsNothing) {
  const LostFrames lost = lostAt({});
  EXPECT_EQ(lost.count(), 0U);
  EXPECT_EQ(lost.text(), "");
  EXPECT_EQ(lost.list(), "");
}

TEST(LostFrames, TheLineStaysShortAndTheListIsWhole) {
  EXPECT_EQ(lostAt({0, 2, 4, 6, 8, 10, 12, 14}).text(), "0, 2, 4, 6, 8, 10, 12, 14");
  EXPECT_EQ(lostAt({0, 2, 4, 6, 8, 10, 12, 14, 16}).text(),
            "0, 2, 4, 6, 8, 10, 12, 14 and 1 run more");
  const LostFrames many = lostAt({0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 19});
  EXPECT_EQ(many.text(), "0, 2, 4, 6, 8, 10, 12, 14 and 2 runs more");
  EXPECT_EQ(many.list(), "0\n2\n4\n6\n8\n10\n12\n14\n16\n18-19\n");
}

TEST(LostFrames, WhatWasDoneIsSaid) {
  EXPECT_STREQ(LostFrames(LostShown::kRepeat).shownText(), "the frame before is shown instead");
  EXPECT_STREQ(LostFrames(LostShown::kBlack).shownText(), "black is shown instead");
  EXPECT_STREQ(LostFrames(LostShown::kSkip).shownText(), "nothing is shown instead");
}

}  // namespace

#include "tools/kpf/terminal/outcome.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

TEST(Outcome, DoneIsTheOnlySuccess) {
  EXPECT_EQ(exitCodeOf(Outcome::kDone), 0);
  for (int end = 1; end <= static_cast<int>(Outcome::kRefused); ++end) {
    EXPECT_NE(exitCodeOf(static_cast<Outcome>(end)), 0) << end;
  }
}

TEST(Outcome, WhatWasBegunEndsInOne) {
  EXPECT_EQ(exitCodeOf(Outcome::kProblemsFound), 1);
  EXPECT_EQ(exitCodeOf(Outcome::kCutShort), 1);
  EXPECT_EQ(exitCodeOf(Outcome::kWriteFailed), 1);
  EXPECT_EQ(exitCodeOf(Outcome::kFailed), 1);
}

TEST(Outcome, WhatWasNotBegunEndsInTwo) {
  EXPECT_EQ(exitCodeOf(Outcome::kWrongUsage), 2);
  EXPECT_EQ(exitCodeOf(Outcome::kUnreadableInput), 2);
  EXPECT_EQ(exitCodeOf(Outcome::kRefused), 2);
}

TEST(Outcome, EachHasAWordOfItsOwn) {
  std::set<std::string> words;
  for (int end = 0; end <= static_cast<int>(Outcome::kRefused); ++end) {
    EXPECT_TRUE(words.insert(nameOf(static_cast<Outcome>(end))).second) << end;
  }
}

TEST(ToolError, CarriesWhatHappenedAndWhatToDo) {
  const ToolError error(Outcome::kRefused, "it is there already", "Choose another name.");
  EXPECT_STREQ(error.what(), "it is there already");
  EXPECT_EQ(error.advice(), "Choose another name.");
  EXPECT_EQ(error.outcome(), Outcome::kRefused);
}

}  // namespace

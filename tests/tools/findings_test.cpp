#include "tools/kpf/checks/findings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace {

using namespace KPF_TOOL;

Finding about(Problem problem, std::optional<std::uint32_t> record = std::nullopt) {
  return {problem, "clip.kpf", record, 7, "text"};
}

TEST(Findings, NoneAtFirst) {
  const Findings findings;
  EXPECT_EQ(findings.problems().count(), 0U);
  EXPECT_TRUE(findings.problems().kept().empty());
  EXPECT_FALSE(findings.firstDamage().has_value());
}

TEST(Findings, AreKeptInTheOrderInWhichTheyCome) {
  Findings findings;
  findings.add(about(Problem::kTime, 9));
  findings.add(about(Problem::kHeader));
  ASSERT_EQ(findings.problems().kept().size(), 2U);
  EXPECT_EQ(findings.problems().kept()[0].problem, Problem::kTime);
  EXPECT_EQ(findings.problems().kept()[0].record, 9U);
  EXPECT_EQ(findings.problems().kept()[1].problem, Problem::kHeader);
  EXPECT_EQ(findings.problems().kept()[1].file, "clip.kpf");
  EXPECT_EQ(findings.problems().kept()[1].offset, 7U);
}

TEST(Findings, OfEachKindAHundredAreKeptAndAllAreCounted) {
  Findings findings;
  for (std::uint32_t n = 0; n < 150; ++n) findings.add(about(Problem::kSequence, n));
  findings.add(about(Problem::kStrayFile));
  EXPECT_EQ(findings.problems().count(), 151U);
  ASSERT_EQ(findings.problems().kept().size(), 101U);
  EXPECT_EQ(findings.problems().kept()[99].record, 99U);
  EXPECT_EQ(findings.problems().kept()[100].problem, Problem::kStrayFile);
}

TEST(Findings, FirstDamageIsTheLowestRecord) {
  Findings findings;
  findings.add(about(Problem::kSequence, 5));
  findings.add(about(Problem::kMissingFile, 3));
  findings.add(about(Problem::kBetweenRows, 4));
  ASSERT_TRUE(findings.firstDamage().has_value());
  EXPECT_EQ(findings.firstDamage()->record, 3U);
  EXPECT_EQ(findings.firstDamage()->problem, Problem::kMissingFile);
}

TEST(Findings, OfOneRecordTheFirstFindingIsTheDamage) {
  Findings findings;
  findings.add(about(Problem::kBetweenRows, 4));
  findings.add(about(Problem::kSequence, 4));
  EXPECT_EQ(findings.firstDamage()->problem, Problem::kBetweenRows);
}

TEST(Findings, NotesAreNoProblemsAndDamageNothing) {
  Findings findings;
  findings.addNote(about(Problem::kTime, 1));
  EXPECT_EQ(findings.problems().count(), 0U);
  ASSERT_EQ(findings.notes().count(), 1U);
  EXPECT_EQ(findings.notes().kept()[0].problem, Problem::kTime);
  EXPECT_FALSE(findings.firstDamage().has_value());
}

TEST(Findings, WhatIsAboutNoRecordDamagesNone) {
  Findings findings;
  findings.add(about(Problem::kIncomplete));
  EXPECT_FALSE(findings.firstDamage().has_value());
}

TEST(Findings, DamageIsKnownEvenWhereTheFindingIsNotKept) {
  Findings findings;
  for (std::uint32_t n = 0; n < 100; ++n) findings.add(about(Problem::kSequence, 500 + n));
  findings.add(about(Problem::kSequence, 2));
  EXPECT_EQ(findings.firstDamage()->record, 2U);
}

TEST(Problems, EachHasAWordOfItsOwn) {
  std::set<std::string> words;
  for (int kind = 0; kind <= static_cast<int>(Problem::kChecksum); ++kind) {
    const std::string word = nameOf(static_cast<Problem>(kind));
    EXPECT_NE(word, "unknown") << kind;
    EXPECT_TRUE(words.insert(word).second) << word;
  }
}

}  // namespace

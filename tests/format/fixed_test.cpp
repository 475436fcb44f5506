// The tables that the header is written and checked from.
#include "format/kpf_fixed.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>

namespace {

namespace layout = KPF_FORMAT::HEADER;

TEST(Fixed, NumbersStandWhereTheyDoInEveryFile) {
  std::map<std::size_t, std::uint64_t> others;
  std::set<std::size_t> zeros;
  for (const auto& [field, value] : KPF_FORMAT::kFixedNumbers) {
    if (value == 0) {
      zeros.insert(field.offset);
    } else {
      others.emplace(field.offset, value);
    }
  }
  EXPECT_EQ(others, (std::map<std::size_t, std::uint64_t>{{164, 0x3FF0000000000000},  // 1.0
                                                          {473, 1},
                                                          {483, 0x404E000000000000},  // 60.0
                                                          {1766, 1}}));
  EXPECT_EQ(zeros, (std::set<std::size_t>{172, 192, 320, 460, 472, 481, 496, 1746, 1754, 1762, 1802,
                                          1882}));
}

TEST(Fixed, TextsStandWhereTheyDoInEveryFile) {
  std::map<std::size_t, std::string_view> texts;
  for (const auto& text : KPF_FORMAT::kFixedTexts) texts.emplace(text.field.offset, text.text);
  EXPECT_EQ(texts, (std::map<std::size_t, std::string_view>{{0, "v3.0"},
                                                            {208, "Converted"},
                                                            {278, "Converted"},
                                                            {308, "Converted"},
                                                            {384, "Converted"},
                                                            {444, "Converted"},
                                                            {491, "v3.0"}}));
}

TEST(Fixed, TextsFitTheirFields) {
  for (const auto& [field, text, wholeField] : KPF_FORMAT::kFixedTexts) {
    EXPECT_LT(text.size(), field.size) << field.offset;
  }
}

// Of a longer text2 the first bytes that are left lie behind the texts at 384 and 444.
TEST(Fixed, LongText2ShowsOnlyWhereNothingElseIsStored) {
  std::map<std::size_t, std::size_t> places;
  for (const auto field : KPF_FORMAT::kOverrunOfText2) places.emplace(field.offset, field.size);
  EXPECT_EQ(
      places,
      (std::map<std::size_t, std::size_t>{
          {393, 51}, {453, 7}, {498, 1200}, {1730, 16}, {1778, 24}, {1810, 72}, {1886, 1112}}));
}

// The fields that a configuration fills, and no other, are in none of the tables.
TEST(Fixed, EveryFieldIsFixedOrUnusedOrTheCallers) {
  std::set<std::size_t> covered;
  for (const auto& number : KPF_FORMAT::kFixedNumbers) covered.insert(number.field.offset);
  for (const auto& text : KPF_FORMAT::kFixedTexts) covered.insert(text.field.offset);
  for (const auto field : KPF_FORMAT::kOverrunOfText2) covered.insert(field.offset);
  std::set<std::size_t> callers;
  for (const auto field : layout::kAll) {
    if (!covered.contains(field.offset)) callers.insert(field.offset);
  }
  EXPECT_EQ(callers, (std::set<std::size_t>{5, 156, 176, 178, 180, 184, 200, 324, 464, 468, 1698,
                                            1714, 1770, 1806}));
}

TEST(Fixed, OfValue5OneAndTwoAreKept) {
  EXPECT_EQ(KPF_FORMAT::storedValue5(1), 1U);
  EXPECT_EQ(KPF_FORMAT::storedValue5(2), 2U);
  for (const std::int64_t other : {0, 3, -1, -2, 257, 0x7FFFFFFF}) {
    EXPECT_EQ(KPF_FORMAT::storedValue5(other), 0U) << other;
  }
}

}  // namespace

// The table logic that streams and amplifiers share.
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <stdexcept>

#include "interface/handle_table.h"

namespace {

using VLM_INTERNAL::HandleState;
using VLM_INTERNAL::HandleTable;
using VLM_INTERNAL::issueHandle;
using VLM_INTERNAL::lookUp;
using VLM_INTERNAL::retireHandle;

HandleTable<int> tableOf(std::initializer_list<int> values) {
  HandleTable<int> table;
  for (const int value : values) table.push_back(std::make_unique<int>(value));
  return table;
}

TEST(HandleTable, HandlesCountFromOne) {
  HandleTable<int> table;
  EXPECT_EQ(issueHandle(table, std::make_unique<int>(10)), 1U);
  EXPECT_EQ(issueHandle(table, std::make_unique<int>(20)), 2U);
  EXPECT_EQ(lookUp(table, 1).object, table[0].get());
  EXPECT_EQ(lookUp(table, 2).object, table[1].get());
  EXPECT_EQ(lookUp(table, 2).state, HandleState::kLive);
}

TEST(HandleTable, LowestEmptySlotIsFilledFirst) {
  HandleTable<int> table = tableOf({1, 2, 3});
  retireHandle(table, 3);
  retireHandle(table, 1);
  EXPECT_EQ(issueHandle(table, std::make_unique<int>(4)), 1U);
  EXPECT_EQ(issueHandle(table, std::make_unique<int>(5)), 3U);
  EXPECT_EQ(issueHandle(table, std::make_unique<int>(6)), 4U);
}

TEST(HandleTable, SlotsStayWhenTheyAreEmptied) {
  HandleTable<int> table = tableOf({1, 2});
  retireHandle(table, 2);
  EXPECT_EQ(table.size(), 2U);
  EXPECT_EQ(lookUp(table, 2).state, HandleState::kEmpty);
  EXPECT_EQ(lookUp(table, 2).object, nullptr);
}

TEST(HandleTable, ZeroIsToldFromOtherBadHandles) {
  EXPECT_EQ(lookUp(tableOf({1}), 0).state, HandleState::kZero);
}

TEST(HandleTable, HandleOneBehindTheLastThrows) {
  EXPECT_THROW(lookUp(tableOf({}), 1), std::out_of_range);
  EXPECT_THROW(lookUp(tableOf({1, 2}), 3), std::out_of_range);
}

TEST(HandleTable, EverythingFurtherOutIsOutOfRange) {
  for (const unsigned handle : {4U, 99U, 0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFFFFFFU}) {
    EXPECT_EQ(lookUp(tableOf({1, 2}), handle).state, HandleState::kOutOfRange) << handle;
  }
}

}  // namespace

#include "tools/kpf/recording/record_ring.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace KPF_TOOL;

void push(RecordRing& ring, const char* text) {
  ring.push(reinterpret_cast<const unsigned char*>(text));
}

/// Records of two bytes, placeholders as "--".
std::string emptied(RecordRing& ring) {
  std::string text;
  for (; !ring.isEmpty(); ring.pop()) {
    const auto* const record = reinterpret_cast<const char*>(ring.front());
    text += record == nullptr ? "--" : std::string(record, 2);
  }
  return text;
}

TEST(RecordRingTest, GivesRecordsInTheirOrder) {
  RecordRing ring(3, 2);
  push(ring, "aa");
  push(ring, "bb");
  EXPECT_EQ(ring.size(), 2U);
  EXPECT_FALSE(ring.isFull());
  EXPECT_EQ(emptied(ring), "aabb");
}

TEST(RecordRingTest, ForgetsTheOldest) {
  RecordRing ring(3, 2);
  for (const char* const record : {"aa", "bb", "cc", "dd", "ee"}) push(ring, record);
  EXPECT_TRUE(ring.isFull());
  EXPECT_EQ(emptied(ring), "ccddee");
}

TEST(RecordRingTest, PlaceholdersTakePlaces) {
  RecordRing ring(3, 2);
  push(ring, "aa");
  ring.push(nullptr);
  push(ring, "bb");
  push(ring, "cc");
  EXPECT_EQ(emptied(ring), "--bbcc");
}

TEST(RecordRingTest, GoesOnAfterItWasEmptied) {
  RecordRing ring(2, 2);
  push(ring, "aa");
  push(ring, "bb");
  push(ring, "cc");
  emptied(ring);
  ring.push(nullptr);
  push(ring, "dd");
  EXPECT_EQ(emptied(ring), "--dd");
}

TEST(RecordRingTest, OneOfNoRecordsHoldsNone) {
  RecordRing ring(0, 2);
  push(ring, "aa");
  EXPECT_TRUE(ring.isEmpty());
}

}  // namespace

#include "tools/kpf/terminal/nearest.h"

#include <gtest/gtest.h>

namespace {

using KPF_TOOL::nearestWord;

TEST(NearestWord, IsTwoSlipsAwayAtMost) {
  for (const char* written :
       {"export", "exprot", "xport", "exxport", "expirt", "Exports", "eport", "xeprot"}) {
    EXPECT_EQ(nearestWord(written, {"record", "export"}), "export") << written;
  }
  for (const char* written : {"", "e", "exp", "import2", "repxto"}) {
    EXPECT_EQ(nearestWord(written, {"record", "export"}), "") << written;
  }
}

TEST(NearestWord, IsTheNearestOfSeveral) {
  EXPECT_EQ(nearestWord("cats", {"carts", "cat", "bats"}), "carts");
  EXPECT_EQ(nearestWord("kat", {"cart", "cat"}), "cat");
}

TEST(NearestWord, IsNotAllSlips) { EXPECT_EQ(nearestWord("a", {"b", "cd"}), ""); }

}  // namespace

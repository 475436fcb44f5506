#include "paths/native_path.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using PATHS::nativePath;

TEST(NativePath, AsciiIsItself) {
  EXPECT_EQ(nativePath("./rec/clip.kpf").string(), "./rec/clip.kpf");
  EXPECT_EQ(nativePath("100%s%n.kpf").string(), "100%s%n.kpf");
}

TEST(NativePath, NoNameIsNoPath) { EXPECT_TRUE(nativePath("").empty()); }

TEST(NativePath, Utf8IsThatText) {
  EXPECT_EQ(nativePath("\xd0\x9a/\xe5\x8b\x95.\xf0\x9f\x8e\xac"),
            std::filesystem::path(u8"\u041a/\u52d5.\U0001f3ac"));
}

#ifdef _WIN32
// Wine's code page, like that of most of the west, is 1252.
TEST(NativePath, AnythingElseIsTextInTheCodePage) {
  EXPECT_EQ(nativePath("r\xe4um"), std::filesystem::path(u8"r\u00e4um"));
  EXPECT_EQ(nativePath("\x80uro"), std::filesystem::path(u8"\u20acuro"));
}

TEST(NativePath, OneByteThatIsNotUtf8TakesTheWholeNameToTheCodePage) {
  EXPECT_EQ(nativePath("\xc3\xa4/\xe4"), std::filesystem::path(u8"\u00c3\u00a4/\u00e4"));
}
#else
TEST(NativePath, BytesStayAsTheyAre) {
  for (const char* name : {"r\xc3\xa4um", "r\xe4um", "\x80uro", "a\\b", "\xff/\xfe"}) {
    EXPECT_EQ(nativePath(name).native(), name);
  }
}
#endif

}  // namespace

#include "tools/kpf/media/image_numbers.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/files.h"

namespace {

using namespace KPF_TOOL;

class ImageNumbersTest : public testing::Test {
 protected:
  void make(const char* name) { TEST_SUPPORT::writeText(folder_ / name, "image"); }

  /// "first-last", or nothing.
  std::string found(const char* pattern) const {
    const auto numbers = imageNumbers(folder_ / pattern);
    if (!numbers) return "";
    return std::to_string(numbers->first) + "-" + std::to_string(numbers->last);
  }

  TEST_SUPPORT::TemporaryFolder folder_;
};

TEST_F(ImageNumbersTest, AnyNumberMayBeTheFirst) {
  for (const char* name : {"f_0007.png", "f_0012.png", "f_0009.png"}) make(name);
  EXPECT_EQ(found("f_%04d.png"), "7-12");
}

TEST_F(ImageNumbersTest, DigitsAreThoseOfThePattern) {
  for (const char* name : {"f_03.png", "f_4.png", "f_005.png", "f_100.png"}) make(name);
  EXPECT_EQ(found("f_%02d.png"), "3-100");
  EXPECT_EQ(found("f_%d.png"), "4-100");
  EXPECT_EQ(found("f_%03d.png"), "5-100");
}

TEST_F(ImageNumbersTest, OtherFilesAreNotCounted) {
  for (const char* name : {"f_.png", "f_1.tif", "g_1.png", "f_1x.png", "f_-1.png",
                           "f_99999999999999999999.png", "f_.p", "f_1.png.png"}) {
    make(name);
  }
  EXPECT_EQ(found("f_%d.png"), "");
}

TEST_F(ImageNumbersTest, NothingIsFoundWithoutAFolder) { EXPECT_EQ(found("missing/f_%d.png"), ""); }

TEST_F(ImageNumbersTest, APatternHasOneNumber) {
  for (const char* name : {"f_%d.png", "%d", "a/f_%4d.png", "f_%012d.tif"}) {
    EXPECT_TRUE(isImagePattern(name)) << name;
  }
  for (const char* name : {"f.png", "f_%s.png", "f_%d_%d.png", "a_%d/f.png", "100%.png", ""}) {
    EXPECT_FALSE(isImagePattern(name)) << name;
  }
}

}  // namespace

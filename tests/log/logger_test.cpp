#include "tests/support/library_test.h"
#include "vx_log.h"

namespace {

using TEST_SUPPORT::readText;
using VX_LOG::VxLogger;

class Logger : public TEST_SUPPORT::LibraryTest {
 protected:
  VxLogger* logger = VxLogger::factory();
};

TEST_F(Logger, LineIsTheFormattedTextAndOneLineFeed) {
  logger->vx_log(7, "%s: streamHandle is 0!", "vxClosePackStreamer");
  EXPECT_EQ(output(), "vxClosePackStreamer: streamHandle is 0!\n");
}

TEST_F(Logger, LevelHasNoEffect) {
  logger->vx_log(0, "same");
  logger->vx_log(7, "same");
  EXPECT_EQ(output(), "same\nsame\n");
}

TEST_F(Logger, LongMessageIsCutAt1023Bytes) {
  logger->vx_log(7, "%s", std::string(2000, 'x').c_str());
  EXPECT_EQ(output(), std::string(1023, 'x') + "\n");
}

TEST_F(Logger, WithoutStdoutAndFileNothingIsWritten) {
  logger->loggerUseStdout(false);
  logger->vx_log(3, "unheard");
  EXPECT_EQ(output(), "");
}

TEST_F(Logger, FileReceivesTheSameLines) {
  ASSERT_EQ(logger->loggerFile((folder / "log.txt").c_str()), 0);
  logger->vx_log(7, "%s: %d", "first", 1);
  logger->loggerUseStdout(false);
  logger->vx_log(7, "second");
  EXPECT_EQ(output(), "first: 1\n");
  EXPECT_EQ(readText(folder / "log.txt"), "first: 1\nsecond\n");
}

}  // namespace

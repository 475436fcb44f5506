#include <fcntl.h>
#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "log/vx_log_sink.h"
#include "tests/support/library_test.h"
#include "vx_log.h"

namespace {

using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;
using VX_LOG::VxLogger;

class Logger : public TEST_SUPPORT::LibraryTest {
 protected:
  VxLogger* logger = VxLogger::factory();
  const std::string file = folder / "log.txt";
};

TEST_F(Logger, FactoryAlwaysGivesTheSameLogger) { EXPECT_EQ(VxLogger::factory(), logger); }

TEST_F(Logger, LineIsTheFormattedTextAndOneLineFeed) {
  logger->vx_log(7, "%s: streamHandle is 0!", "vxClosePackStreamer");
  EXPECT_EQ(output(), "vxClosePackStreamer: streamHandle is 0!\n");
}

TEST_F(Logger, LevelsHaveTheNumbersOfTheSystemLog) {
  EXPECT_EQ(VX_LOG::kError, 3U);
  EXPECT_EQ(VX_LOG::kWarning, 4U);
  EXPECT_EQ(VX_LOG::kDebug, 7U);
}

TEST_F(Logger, LevelHasNoEffect) {
  for (const unsigned level : {0U, 3U, 7U, 4000000000U}) logger->vx_log(level, "same");
  EXPECT_EQ(output(), "same\nsame\nsame\nsame\n");
}

TEST_F(Logger, MessageOf1023BytesIsWhole) {
  logger->vx_log(7, "%s", std::string(1023, 'x').c_str());
  EXPECT_EQ(output(), std::string(1023, 'x') + "\n");
}

TEST_F(Logger, LongerMessageIsCutAt1023Bytes) {
  logger->vx_log(7, "%s", (std::string(1023, 'x') + "yz").c_str());
  EXPECT_EQ(output(), std::string(1023, 'x') + "\n");
}

TEST_F(Logger, EmptyMessageIsAnEmptyLine) {
  logger->vx_log(7, "%s", "");
  EXPECT_EQ(output(), "\n");
}

TEST_F(Logger, ArgumentsAreNeverTakenForAFormat) {
  logger->vx_log(7, "%s", "%s %n 100%");
  EXPECT_EQ(output(), "%s %n 100%\n");
}

TEST_F(Logger, WithoutStdoutAndFileNothingIsWritten) {
  logger->loggerUseStdout(false);
  logger->vx_log(3, "lost");
  EXPECT_EQ(output(), "");
}

TEST_F(Logger, SyslogFlagHasNoEffect) {
  logger->loggerUseSyslog(false);
  logger->vx_log(7, "first");
  logger->loggerUseSyslog(true);
  logger->vx_log(7, "second");
  EXPECT_EQ(output(), "first\nsecond\n");
}

TEST_F(Logger, FileReceivesTheLinesWithSingleLineFeeds) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  logger->vx_log(7, "%s: %d", "first", 1);
  logger->loggerUseStdout(false);
  logger->vx_log(7, "second");
  EXPECT_EQ(output(), "first: 1\n");
  EXPECT_EQ(readText(file), "first: 1\nsecond\n");
}

TEST_F(Logger, SecondFileIsRefusedAndTheFirstKept) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  EXPECT_EQ(logger->loggerFile((folder / "other.txt").c_str()), -1);
  logger->vx_log(7, "line");
  EXPECT_EQ(readText(file), "line\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "other.txt"));
}

TEST_F(Logger, OlderAndLongerFileKeepsItsTail) {
  writeText(file, "a long line of an earlier run\n");
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  logger->vx_log(7, "new");
  EXPECT_EQ(readText(file), "new\nng line of an earlier run\n");
}

TEST_F(Logger, FailedOpenGivesItsErrorAndSetsNoFile) {
  EXPECT_EQ(logger->loggerFile((folder / "missing/log.txt").c_str()), ENOENT);
  EXPECT_EQ(logger->loggerFile(file.c_str()), 0);
}

TEST_F(Logger, ClosingWithoutAFileSucceeds) {
  EXPECT_EQ(logger->loggerFile(nullptr), 0);
  EXPECT_EQ(logger->loggerFile(nullptr), 0);
}

TEST_F(Logger, AfterClosingAnotherFileMayBeSet) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  logger->vx_log(7, "first");
  ASSERT_EQ(logger->loggerFile(nullptr), 0);
  logger->vx_log(7, "to nobody");
  ASSERT_EQ(logger->loggerFile((folder / "other.txt").c_str()), 0);
  logger->vx_log(7, "second");
  EXPECT_EQ(readText(file), "first\n");
  EXPECT_EQ(readText(folder / "other.txt"), "second\n");
}

TEST_F(Logger, ReopenGivesADescriptorAndStartsTheFileOfThatNameAgain) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  logger->vx_log(7, "before");
  EXPECT_GT(logger->loggerReopen(), 0);
  logger->vx_log(7, "after");
  EXPECT_EQ(readText(file), "after\n\n");  // written over "before\n"
}

TEST_F(Logger, ReopenUsesNoDescriptorUp) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  const int descriptor = logger->loggerReopen();
  for (int rotation = 0; rotation < 20; ++rotation) {
    ASSERT_EQ(logger->loggerReopen(), descriptor);  // the lowest that is free
  }
}

// The next file that the process opens bears the number that the log's had.
TEST_F(Logger, ClosedFileIsForgotten) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  ASSERT_EQ(logger->loggerFile(nullptr), 0);
  std::ofstream data(folder / "data.div", std::ios::binary);
  logger->vx_log(7, "stray");
  data << "pixels" << std::flush;
  EXPECT_EQ(readText(folder / "data.div"), "pixels");
  EXPECT_EQ(readText(file), "");
}

TEST_F(Logger, ReopenWithoutAFileFails) { EXPECT_EQ(logger->loggerReopen(), -1); }

TEST_F(Logger, FailedReopenKeepsTheNameUntilItIsCleared) {
  std::filesystem::create_directory(folder.path() / "gone");
  ASSERT_EQ(logger->loggerFile((folder / "gone/log.txt").c_str()), 0);
#ifndef _WIN32  // an open file and its folder cannot be removed there
  std::filesystem::remove_all(folder.path() / "gone");
  EXPECT_EQ(logger->loggerReopen(), -1);
#endif
  EXPECT_EQ(logger->loggerFile(file.c_str()), -1);
  EXPECT_EQ(logger->loggerFile(nullptr), 0);
  EXPECT_EQ(logger->loggerFile(file.c_str()), 0);
}

#ifdef _WIN32
TEST_F(Logger, ProgramsThatAreStartedDoNotInheritTheFile) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(logger->loggerReopen()));
  DWORD flags = HANDLE_FLAG_INHERIT;
  ASSERT_NE(GetHandleInformation(handle, &flags), 0);
  EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0U);
}
#else
/// What the open descriptors of a program just started stand for.
std::string descriptorsOfAChild() {
  std::FILE* const pipe = popen("ls -l /proc/self/fd", "r");
  std::string text(16384, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), pipe));
  pclose(pipe);
  return text;
}

TEST_F(Logger, ProgramsThatAreStartedDoNotInheritTheFile) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  const int inherited = ::open((folder / "inherited").c_str(), O_WRONLY | O_CREAT, 0600);
  const std::string first = descriptorsOfAChild();
  ASSERT_GT(logger->loggerReopen(), 0);
  const std::string second = descriptorsOfAChild();
  ::close(inherited);
  EXPECT_NE(first.find("/inherited"), std::string::npos);  // others are seen
  EXPECT_EQ(first.find("/log.txt"), std::string::npos);
  EXPECT_EQ(second.find("/log.txt"), std::string::npos);
}

TEST_F(Logger, NewFileIsForOwnerAndGroup) {
  using std::filesystem::perms;
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  const perms given = std::filesystem::status(file).permissions();
  EXPECT_EQ(given & (perms::owner_all | perms::others_all), perms::owner_read | perms::owner_write);
}
#endif

std::string sunk;

TEST_F(Logger, SinkGetsEveryLineInPlaceOfTheOutputs) {
  ASSERT_EQ(logger->loggerFile(file.c_str()), 0);
  VX_LOG::lineSink = [](unsigned level, const char* line) noexcept {
    sunk += std::to_string(level) + " " + line + "|";
  };
  logger->vx_log(3, "%s: lost", "queueFrame");
  logger->vx_log(7, "%s", std::string(2000, 'x').c_str());
  VX_LOG::lineSink = nullptr;
  EXPECT_EQ(sunk, "3 queueFrame: lost|7 " + std::string(1023, 'x') + "|");
  EXPECT_EQ(output(), "");
  EXPECT_EQ(readText(file), "");
  logger->vx_log(7, "again");
  EXPECT_EQ(output(), "again\n");
}

}  // namespace

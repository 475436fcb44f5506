// What touches the process itself: its standard output, and its signals.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tools/kpf/terminal/captured_output.h"
#include "tools/kpf/terminal/interrupt.h"

namespace {

using namespace KPF_TOOL;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

/// Writes past the C library's buffer as well, as the library does.
void say(const char* line) {
  std::fputs(line, stdout);
  std::fflush(stdout);
}

TEST(CapturedOutput, KeepsOffStandardOutput) {
  CaptureStdout();
  CaptureStderr();
  {
    const CapturedOutput captured;
    say("a line of the log\n");
  }
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_EQ(GetCapturedStderr(), "kpf: log of the library: a line of the log\n");
}

TEST(CapturedOutput, TellsWhetherAnythingWasSaid) {
  CaptureStdout();
  CaptureStderr();
  {
    const CapturedOutput captured;
    EXPECT_FALSE(captured.any());
    say("x");
    EXPECT_TRUE(captured.any());
  }
  GetCapturedStdout();
  GetCapturedStderr();
}

TEST(CapturedOutput, WhatWasPrintedBeforeAndAfterIsAResult) {
  CaptureStdout();
  CaptureStderr();
  std::fputs("before ", stdout);  // still in the buffer when the capture begins
  {
    CapturedOutput captured;
    say("in between\n");
    captured.release();
    say("after");
  }
  EXPECT_EQ(GetCapturedStdout(), "before after");
  EXPECT_EQ(GetCapturedStderr(), "kpf: log of the library: in between\n");
}

TEST(CapturedOutput, ReleasedTwiceSaysItOnce) {
  CaptureStdout();
  CaptureStderr();
  {
    CapturedOutput captured;
    say("once\n");
    captured.release();
    captured.release();
  }
  GetCapturedStdout();
  EXPECT_EQ(GetCapturedStderr(), "kpf: log of the library: once\n");
}

TEST(CapturedOutput, LinesOfAnyLengthArePassedOn) {
  const std::string line(5000, 'x');
  CaptureStdout();
  CaptureStderr();
  {
    const CapturedOutput captured;
    say(line.c_str());
  }
  GetCapturedStdout();
  EXPECT_EQ(GetCapturedStderr(), "kpf: log of the library: " + line + "\n");
}

/// All that the user is shown of `lines` lines.
std::string shownOf(unsigned lines, const std::string& line) {
  CaptureStdout();
  CaptureStderr();
  {
    const CapturedOutput captured;
    for (unsigned n = 0; n < lines; ++n) say(line.c_str());
  }
  GetCapturedStdout();
  return GetCapturedStderr();
}

TEST(CapturedOutput, NothingOfALineMovesTheCursor) {
  EXPECT_EQ(shownOf(1, "\x1b[2J\rgone\n"), "kpf: log of the library: \\x1b[2J\\x0dgone\n");
}

TEST(CapturedOutput, ALineForEachFrameIsNotToldToTheEnd) {
  const std::string told = "kpf: log of the library: x\n";
  EXPECT_EQ(shownOf(10, "x\n").size(), 10 * told.size());
  EXPECT_EQ(shownOf(11, "x\n").substr(10 * told.size()), "kpf: log of the library: 1 line more\n");
  EXPECT_EQ(shownOf(500, "x\n").substr(10 * told.size()),
            "kpf: log of the library: 490 lines more\n");
}

/// 0 when a signal only leaves a note. In a process of its own: the note cannot be taken back.
[[noreturn]] void exitAfter(int signal) {
  const Interrupt interrupt;
  if (Interrupt::requested()) std::exit(1);
  std::raise(signal);
  std::exit(Interrupt::requested() ? 0 : 2);
}

TEST(InterruptDeathTest, CtrlCLeavesANote) {
  EXPECT_EXIT(exitAfter(SIGINT), testing::ExitedWithCode(0), "");
}

TEST(InterruptDeathTest, SigtermLeavesANote) {
  EXPECT_EXIT(exitAfter(SIGTERM), testing::ExitedWithCode(0), "");
}

TEST(InterruptDeathTest, OtherSignalsStillEnd) {
  EXPECT_EXIT(exitAfter(SIGUSR1), testing::KilledBySignal(SIGUSR1), "");
}

}  // namespace

#include "tools/kpf/commands/live_report.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace KPF_TOOL;

class LiveReportTest : public testing::Test {
 protected:
  LiveReportTest() {
    result_.clips = {{"./a.kpf", 5, 1, true}};
    result_.tally.received = 4;
    result_.tally.lost = 1;
  }

  Outcome tell() {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    RecordReport remarks(options_.quiet, options_.json);
    const Outcome outcome = report(result_, options_, remarks);
    out_ = testing::internal::GetCapturedStdout();
    err_ = testing::internal::GetCapturedStderr();
    return outcome;
  }

  LiveResult result_;
  RecordOptions options_;
  std::string out_;
  std::string err_;
};

TEST_F(LiveReportTest, ForPeople) {
  result_.worstCall = 0.0012;
  EXPECT_EQ(tell(), Outcome::kDone);
  EXPECT_EQ(out_,
            "./a.kpf: 5 frames recorded, 1 placeholder\n"
            "4 received, 1 lost, 0 incomplete, 0 late; slowest write 1.2 ms\n");
  result_.buffers = 20;
  result_.mostWaiting = 3;
  tell();
  EXPECT_NE(out_.find("; at most 3 of 20 buffers waited; slowest"), std::string::npos) << out_;
  EXPECT_EQ(err_, "");
}

TEST_F(LiveReportTest, ALossIsAFailureWhereThatIsWanted) {
  options_.live.noLoss = true;
  EXPECT_EQ(tell(), Outcome::kProblemsFound);
  result_.tally.lost = 0;
  EXPECT_EQ(tell(), Outcome::kDone);
  result_.tally.incomplete = 1;
  EXPECT_EQ(tell(), Outcome::kProblemsFound);
}

TEST_F(LiveReportTest, WhatIsNotWholeWeighsMost) {
  result_.clips.push_back({"./b.kpf", 7, 0, false});
  result_.trouble = "the camera is gone";
  EXPECT_EQ(tell(), Outcome::kWriteFailed);
  EXPECT_NE(err_.find("kpf: ./b.kpf: not all of 7 frames are on disk"), std::string::npos) << err_;
  EXPECT_NE(err_.find("kpf: the camera is gone\n"), std::string::npos) << err_;
  result_.clips.pop_back();
  EXPECT_EQ(tell(), Outcome::kCutShort);
}

TEST_F(LiveReportTest, NothingRecordedHasAReason) {
  result_.clips.clear();
  EXPECT_EQ(tell(), Outcome::kCutShort);
  EXPECT_NE(err_.find("nothing is recorded: nothing began it\n"), std::string::npos) << err_;
  result_.tally.received = 0;
  tell();
  EXPECT_NE(err_.find("nothing is recorded: no whole frame came\nLook at"), std::string::npos);
}

TEST_F(LiveReportTest, TheClocksAreRemarkedUpon) {
  result_.clockMissing = true;
  result_.clockResets = 2;
  result_.drift = 0.0123;
  tell();
  EXPECT_EQ(err_,
            "kpf: the camera tells no times: those of the system were taken\n"
            "kpf: the camera's clock was set back 2 times: the times go on by the system's\n"
            "kpf: the camera's clock lost 12 ms against the system's; --clock system takes that "
            "one\n");
  result_.drift = -0.5;
  tell();
  EXPECT_NE(err_.find("gained 500 ms"), std::string::npos) << err_;
  result_ = LiveResult{};
  result_.drift = 0.009;  // which a busy machine does
  tell();
  EXPECT_EQ(err_.find("clock"), std::string::npos) << err_;
}

TEST_F(LiveReportTest, QuietIsSilentOfSuccessOnly) {
  options_.quiet = true;
  result_.clockMissing = true;
  EXPECT_EQ(tell(), Outcome::kDone);
  EXPECT_EQ(out_ + err_, "");
  result_.trouble = "gone";
  tell();
  EXPECT_NE(out_, "");
}

TEST_F(LiveReportTest, RemarksStandInTheDocument) {
  options_.json = true;
  result_.clockMissing = true;
  tell();
  EXPECT_NE(out_.find("\"remarks\": [\n    \"the camera tells no times"), std::string::npos)
      << out_;
}

}  // namespace

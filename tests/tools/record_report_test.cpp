#include "tools/kpf/recording/record_report.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

using namespace KPF_TOOL;

TEST(RecordReport, WhatWasNotWrittenWeighsMost) {
  RecordResult result;
  EXPECT_EQ(outcomeOf(result), Outcome::kDone);
  result.placeholders = 3;
  EXPECT_EQ(outcomeOf(result), Outcome::kDone);
  result.trouble = "ends";
  EXPECT_EQ(outcomeOf(result), Outcome::kCutShort);
  result.damaged = 1;
  EXPECT_EQ(outcomeOf(result), Outcome::kProblemsFound);
  result.written = false;
  EXPECT_EQ(outcomeOf(result), Outcome::kWriteFailed);
}

TEST(RecordReport, CallsAreToldInMilliseconds) {
  RecordResult result;
  result.within999 = std::chrono::microseconds(214);
  result.longest = std::chrono::microseconds(12345);
  EXPECT_EQ(paceText(result), "99.9 % of the calls took up to 0.21 ms, the slowest 12.35 ms");
  result.late = 0;
  EXPECT_TRUE(paceText(result).ends_with("12.35 ms; 0 frames came late"));
  result.late = 1;
  EXPECT_TRUE(paceText(result).ends_with("; 1 frame came late"));
}

class ConcludeTest : public testing::Test {
 protected:
  /// Exit, standard output and standard error of telling it.
  void conclude(bool quiet, bool json) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    RecordReport report(quiet, json);
    report.remark("");
    report.remark("mind the gap");
    outcome_ = report.conclude(result_);
    out_ = testing::internal::GetCapturedStdout();
    err_ = testing::internal::GetCapturedStderr();
  }

  ConcludeTest() {
    result_.header = "./a.kpf";
    result_.frames = result_.onDisk = 5;
    result_.placeholders = 1;
  }

  RecordResult result_;
  Outcome outcome_ = Outcome::kFailed;
  std::string out_;
  std::string err_;
};

TEST_F(ConcludeTest, ForPeople) {
  conclude(false, false);
  EXPECT_EQ(out_, "./a.kpf: 5 frames recorded, 1 placeholder\n");
  EXPECT_EQ(err_, "kpf: mind the gap\n");
  EXPECT_EQ(outcome_, Outcome::kDone);
}

TEST_F(ConcludeTest, QuietIsSilentOfSuccessOnly) {
  conclude(true, false);
  EXPECT_EQ(out_ + err_, "");
  result_.damaged = 1;
  result_.trouble = "1 frame is damaged";
  conclude(true, false);
  EXPECT_EQ(out_, "");
  EXPECT_EQ(err_, "kpf: ./a.kpf: 5 frames recorded, 1 placeholder: 1 frame is damaged\n");
}

TEST_F(ConcludeTest, AnInputThatEndsEarly) {
  result_.trouble = "a.mkv ends";
  conclude(false, false);
  EXPECT_EQ(out_, "");
  EXPECT_TRUE(err_.ends_with("5 frames recorded, 1 placeholder: a.mkv ends\n")) << err_;
}

TEST_F(ConcludeTest, WhatIsNotOnDiskIsCounted) {
  result_.written = false;
  result_.onDisk = 3;
  result_.obstacle = "the disk is full";
  conclude(true, false);
  EXPECT_EQ(outcome_, Outcome::kWriteFailed);
  EXPECT_NE(err_.find("3 of 5 frames are on disk: the disk is full\n"), std::string::npos) << err_;
}

TEST_F(ConcludeTest, ForPrograms) {
  result_.within999 = std::chrono::microseconds(250);
  result_.longest = std::chrono::microseconds(1500);
  conclude(false, true);
  EXPECT_EQ(out_, R"({
  "file": "./a.kpf",
  "outcome": "done",
  "frames": 5,
  "placeholders": 1,
  "damaged": 0,
  "onDisk": 5,
  "trouble": null,
  "remarks": [
    "mind the gap"
  ],
  "calls": {
    "p999": 0.00025,
    "longest": 0.0015
  },
  "late": null
}
)");
  result_.late = 2;
  result_.trouble = "ends";
  conclude(true, true);
  EXPECT_NE(out_.find("\"late\": 2"), std::string::npos) << out_;
  EXPECT_NE(out_.find("\"trouble\": \"ends\""), std::string::npos) << out_;
  EXPECT_NE(out_.find("\"outcome\": \"cut-short\""), std::string::npos) << out_;
}

}  // namespace

#include "tools/kpf/checks/survey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/tools/five_frames_test.h"
#include "tools/kpf/checks/check_files.h"
#include "tools/kpf/checks/check_records.h"

namespace {

using namespace KPF_TOOL;

constexpr std::size_t kRecord = 16 + 8;  // bytes; frames of 4 x 2 pixels at 8 bits

class FiveFrames : public FiveFramesTest {
 protected:
  /// Makes zeros of record `n`.
  void wipe(std::size_t n) {
    auto bytes = TEST_SUPPORT::readBytes(data_);
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(n * kRecord), kRecord, 0);
    TEST_SUPPORT::writeBytes(data_, bytes);
  }

  const std::string data_ = folder_ / "clip/clip_0001.div";
};

TEST_F(FiveFrames, AreComplete) {
  const Survey survey(header_);
  EXPECT_TRUE(survey.complete());
  EXPECT_EQ(survey.bytes, 5 * kRecord);
  EXPECT_EQ(survey.placeholders, 0U);
  EXPECT_EQ(survey.first->place, 0U);
  EXPECT_EQ(survey.last->place, 4U);
}

TEST_F(FiveFrames, LastAFifthOfASecond) {
  const Survey survey(header_);
  ASSERT_TRUE(survey.hasRate());
  EXPECT_DOUBLE_EQ(survey.duration(), 0.2);
  EXPECT_DOUBLE_EQ(survey.bytesPerSecond(), 25.0 * kRecord);
}

TEST_F(FiveFrames, LostOnesAreNeitherFirstNorLast) {
  wipe(0);
  wipe(4);
  const Survey survey(header_);
  EXPECT_TRUE(survey.complete());
  EXPECT_EQ(survey.placeholders, 2U);
  EXPECT_EQ(survey.first->place, 1U);
  EXPECT_EQ(survey.last->place, 3U);
}

TEST_F(FiveFrames, AllLostThereIsNoFirst) {
  for (std::size_t n = 0; n < 5; ++n) wipe(n);
  const Survey survey(header_);
  EXPECT_EQ(survey.placeholders, 5U);
  EXPECT_FALSE(survey.first.has_value());
  EXPECT_FALSE(survey.last.has_value());
}

TEST_F(FiveFrames, CutShortAreNotComplete) {
  std::filesystem::resize_file(data_, 3 * kRecord + 1);
  const Survey survey(header_);
  EXPECT_FALSE(survey.complete());
  EXPECT_EQ(survey.recording.recordCount(), 3U);
  EXPECT_EQ(survey.findings.firstDamage()->record, 3U);
  EXPECT_DOUBLE_EQ(survey.duration(), 0.12);
}

TEST_F(FiveFrames, PassEveryCheck) {
  const KPF_READER::Recording recording(header_);
  Findings findings;
  checkHeader(recording, findings);
  checkCompleteness(recording, findings);
  checkStrayFiles(recording, findings);
  std::vector<std::uint64_t> read;
  const auto placeholders = checkRecords(
      recording, [&](std::uint64_t bytes) { read.push_back(bytes); }, findings);
  EXPECT_EQ(findings.problems().count(), 0U);
  EXPECT_EQ(findings.notes().count(), 0U);
  EXPECT_EQ(placeholders, 0U);
  // Progress is told in bytes that were read, never more than there are, and ends with all.
  EXPECT_TRUE(std::is_sorted(read.begin(), read.end()));
  EXPECT_EQ(read.back(), 5 * kRecord);
}

TEST_F(FiveFrames, EachDamageIsFoundByItsCheck) {
  auto bytes = TEST_SUPPORT::readBytes(data_);
  bytes[2 * kRecord] = 9;  // the number of record 2
  TEST_SUPPORT::writeBytes(data_, bytes);
  wipe(3);
  const KPF_READER::Recording recording(header_);
  Findings findings;
  EXPECT_EQ(checkRecords(
                recording, [](std::uint64_t) {}, findings),
            1U);
  EXPECT_EQ(findings.problems().count(), 0U);
  ASSERT_EQ(findings.notes().count(), 2U);
  EXPECT_EQ(findings.notes().kept()[0].problem, Problem::kPlaceholders);
  EXPECT_EQ(findings.notes().kept()[0].record, 3U);
  EXPECT_EQ(findings.notes().kept()[1].problem, Problem::kSequence);
  EXPECT_EQ(findings.notes().kept()[1].record, 2U);
  EXPECT_EQ(findings.notes().kept()[1].offset, 2 * kRecord);
}

}  // namespace

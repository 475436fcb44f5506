#include "tools/kpf/records/records.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "format/kpf_layout.h"
#include "tests/support/files.h"
#include "tests/tools/five_frames_test.h"
#include "tools/kpf/checks/check_records.h"

namespace {

using namespace KPF_TOOL;

class RecordsTest : public FiveFramesTest {
 protected:
  /// Another byte somewhere in the header file.
  void change(std::size_t offset) {
    auto bytes = TEST_SUPPORT::readBytes(header_);
    bytes[offset] ^= 0xFF;
    TEST_SUPPORT::writeBytes(header_, bytes);
  }
};

TEST_F(RecordsTest, AnotherIdentifierIsAnotherRecording) {
  const KPF_READER::Recording recording(header_);
  EXPECT_FALSE(isReplaced(recording));
  change(KPF_FORMAT::HEADER::kFrameCount.offset);  // which a recorder does in the end
  EXPECT_FALSE(isReplaced(recording));
  change(KPF_FORMAT::HEADER::kIdentifier.offset + 15);
  EXPECT_TRUE(isReplaced(recording));
  std::filesystem::remove(header_);
  EXPECT_FALSE(isReplaced(recording));
}

TEST_F(RecordsTest, AnotherRecordingIsAProblemOfTheOneThatIsVerified) {
  const KPF_READER::Recording recording(header_);
  change(KPF_FORMAT::HEADER::kIdentifier.offset);
  Findings findings;
  checkRecords(
      recording, [](std::uint64_t) {}, findings);
  ASSERT_EQ(findings.problems().count(), 1U);
  EXPECT_EQ(findings.problems().kept()[0].problem, Problem::kHeader);
  EXPECT_EQ(findings.problems().kept()[0].offset, KPF_FORMAT::HEADER::kIdentifier.offset);
}

}  // namespace

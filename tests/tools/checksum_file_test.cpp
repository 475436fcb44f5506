#include "tools/kpf/records/checksum_file.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/support/files.h"

namespace {

using KPF_TOOL::ChecksumReader;
using KPF_TOOL::ChecksumWriter;
using KPF_TOOL::Identifier;
using State = ChecksumReader::State;

class Checksums : public testing::Test {
 protected:
  /// Of the places 1, 2 and 5.
  void write() {
    ChecksumWriter writer(path_, kOurs);
    writer.add(1, 0x11);
    writer.add(2, 0xFFFFFFFFFFFFFFFF);
    writer.add(5, 0);
    EXPECT_TRUE(writer.close());
  }

  static constexpr Identifier kOurs{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0xAB};
  static constexpr Identifier kOthers{};
  TEST_SUPPORT::TemporaryFolder folder_;
  const std::string header_ = folder_ / "clip.kpf";
  const std::string path_ = folder_ / "clip.kpf.checksums.txt";
};

TEST_F(Checksums, AreLinesOfPlaceAndDigits) {
  write();
  EXPECT_EQ(TEST_SUPPORT::readText(path_),
            "kpf checksums 1 xxh3-64 0102030405060708090a0b0c0d0e0fab\n"
            "1 0000000000000011\n2 ffffffffffffffff\n5 0000000000000000\n");
}

TEST_F(Checksums, ComeBackByTheirPlaces) {
  write();
  ChecksumReader reader(header_, kOurs);
  ASSERT_EQ(reader.state(), State::kUsable);
  EXPECT_EQ(reader.of(0), std::nullopt);
  EXPECT_EQ(reader.of(1), 0x11U);
  EXPECT_EQ(reader.of(2), 0xFFFFFFFFFFFFFFFFU);
  EXPECT_EQ(reader.of(4), std::nullopt);
  EXPECT_EQ(reader.of(5), 0U);
  EXPECT_EQ(reader.of(6), std::nullopt);
  reader.finish();
  EXPECT_EQ(reader.passedOver(), 0U);
  EXPECT_EQ(reader.badLine(), 0U);
}

TEST_F(Checksums, ThatNobodyAskedForAreCounted) {
  write();
  ChecksumReader reader(header_, kOurs);
  EXPECT_EQ(reader.of(2), 0xFFFFFFFFFFFFFFFFU);
  EXPECT_EQ(reader.passedOver(), 1U);
  reader.finish();
  EXPECT_EQ(reader.passedOver(), 2U);
  EXPECT_EQ(reader.firstPassedOver(), 1U);
}

TEST_F(Checksums, OfAnotherRecordingAreNotUsed) {
  write();
  ChecksumReader reader(header_, kOthers);
  EXPECT_EQ(reader.state(), State::kForeign);
  EXPECT_EQ(reader.of(1), std::nullopt);
}

TEST_F(Checksums, NeedNotBeThere) {
  EXPECT_EQ(ChecksumReader(header_, kOurs).state(), State::kAbsent);
}

TEST_F(Checksums, ALastLineThatBreaksOffWasBeingWritten) {
  write();
  TEST_SUPPORT::writeText(path_, TEST_SUPPORT::readText(path_).substr(0, 90));
  ChecksumReader reader(header_, kOurs);
  EXPECT_EQ(reader.of(1), 0x11U);
  reader.finish();
  EXPECT_EQ(reader.badLine(), 0U);
}

TEST_F(Checksums, MayHaveLineEndsOfWindows) {
  TEST_SUPPORT::writeText(path_,
                          "kpf checksums 1 xxh3-64 0102030405060708090a0b0c0d0e0fab\r\n"
                          "1 0000000000000011\r\n");
  ChecksumReader reader(header_, kOurs);
  ASSERT_EQ(reader.state(), State::kUsable);
  EXPECT_EQ(reader.of(1), 0x11U);
}

TEST_F(Checksums, BehindALineThatIsNoneNothingIsRead) {
  const std::string first = "kpf checksums 1 xxh3-64 0102030405060708090a0b0c0d0e0fab\n";
  for (const char* line :
       {"", "1", "1 ", "1 11", " 1 0000000000000011", "-1 0000000000000011", "1 000000000000001g",
        "1  000000000000011", "4294967296 0000000000000011"}) {
    TEST_SUPPORT::writeText(path_, first + line + "\n5 0000000000000011\n");
    ChecksumReader reader(header_, kOurs);
    EXPECT_EQ(reader.badLine(), 2U) << line;
    EXPECT_EQ(reader.of(5), std::nullopt) << line;
  }
}

}  // namespace

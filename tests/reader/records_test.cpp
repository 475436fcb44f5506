#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::DivFile;
using KPF_READER::FrameRecord;
using KPF_READER::Recording;
using TEST_READER::recordBytes;
using TEST_READER::recordRun;
using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::writeBytes;
using testing::ElementsAre;

class Records : public TEST_READER::HandMade {};

TEST_F(Records, CountRunsThroughAllDataFiles) { EXPECT_EQ(open().recordCount(), 5U); }

TEST_F(Records, DataFilesTellWhatTheyHold) {
  const Recording recording = open();
  ASSERT_EQ(recording.divFiles().size(), 3U);
  const DivFile& third = recording.divFiles()[2];
  EXPECT_EQ(third.number, 3U);
  EXPECT_EQ(third.path, div3);
  EXPECT_EQ(third.size, 22U);
  EXPECT_EQ(third.firstRecord, 4U);
  EXPECT_EQ(third.records, 1U);
  EXPECT_EQ(third.trailingBytes, 0U);
}

TEST_F(Records, HeaderOfARecordIsRead) {
  const FrameRecord record = open().record(3);
  EXPECT_EQ(record.sequenceNumber, 3U);
  EXPECT_EQ(record.seconds, 1700000000);
  EXPECT_EQ(record.microseconds, 120000U);
  EXPECT_FALSE(record.placeholder);
}

TEST_F(Records, PlaceIsFileAndOffset) {
  const FrameRecord record = open().record(3);
  EXPECT_EQ(record.place, 3U);
  EXPECT_EQ(record.fileNumber, 2U);
  EXPECT_EQ(record.offset, 22U);
}

TEST_F(Records, PixelsStayValidWhenTheRecordingIsGone) {
  const FrameRecord first = open().record(0);
  const FrameRecord last = open().record(4);
  EXPECT_THAT(first.pixels, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(last.pixels, ElementsAre(41, 42, 43, 44, 45, 46));
}

TEST_F(Records, FileIsMappedOnceAsLongAsARecordOfItIsHeld) {
  const Recording recording = open();
  const FrameRecord first = recording.record(0);
  recording.record(4);  // of another file
  EXPECT_EQ(recording.record(0).pixels.data(), first.pixels.data());
}

TEST_F(Records, MayBeReadInAnyOrder) {
  const Recording recording = open();
  for (const unsigned n : {4U, 0U, 3U, 3U, 1U, 2U}) {
    EXPECT_EQ(recording.record(n).sequenceNumber, n);
  }
}

TEST_F(Records, MayBeReadSparsely) {
  const Recording recording(header, KPF_READER::Access::kSparse);
  EXPECT_EQ(recording.record(4).pixels[0], 41);
}

TEST_F(Records, SequenceNumberIsTheRecordsOwn) {
  writeBytes(div1, TEST_READER::with(recordRun(0, 1), 22, {0x78, 0x56, 0x34, 0x92}));
  EXPECT_EQ(open().record(1).sequenceNumber, 0x92345678U);
  EXPECT_EQ(open().record(1).place, 1U);
}

TEST_F(Records, SecondsAreSigned) {
  writeBytes(
      div3, TEST_READER::with(recordBytes(4), 4, {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(open().record(4).seconds, -2);
}

TEST_F(Records, AllZeroRecordIsAPlaceholder) {
  writeBytes(div3, Bytes(22));
  EXPECT_TRUE(open().record(4).placeholder);
  EXPECT_FALSE(open().record(0).placeholder);
}

TEST_F(Records, ZeroHeaderBeforePixelsIsNoPlaceholder) {
  Bytes bytes(22);
  bytes.back() = 1;
  writeBytes(div3, bytes);
  EXPECT_FALSE(open().record(4).placeholder);
}

TEST_F(Records, BeyondTheLastThereIsNone) {
  EXPECT_THROW(open().record(5), std::out_of_range);
  EXPECT_THROW(open().record(0xFFFFFFFF), std::out_of_range);
}

TEST_F(Records, RecordingMayBeMoved) {
  Recording from = open();
  const Recording to = std::move(from);
  EXPECT_EQ(to.record(2).sequenceNumber, 2U);
}

TEST_F(Records, StatusFileIsReadWhereThereIsOne) {
  EXPECT_EQ(open().statusFile(), std::nullopt);
  TEST_SUPPORT::writeText(header + ".incomplete.txt", "Packed stream is incomplete\nStatus:\n");
  EXPECT_EQ(open().statusFile(), "Packed stream is incomplete\nStatus:\n");
}

TEST_F(Records, StatusFileIsReadToItsFirst4096Bytes) {
  TEST_SUPPORT::writeText(header + ".incomplete.txt", std::string(10000, 's'));
  EXPECT_EQ(open().statusFile(), std::string(4096, 's'));
}

}  // namespace

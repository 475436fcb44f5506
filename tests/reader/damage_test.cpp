#include <filesystem>
#include <stdexcept>
#include <string>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::Recording;
using TEST_READER::recordRun;
using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::writeBytes;
namespace fs = std::filesystem;

class Damage : public TEST_READER::HandMade {
 protected:
  void expectRefusalToOpen(const std::string& file, const std::string& problem) {
    TEST_READER::expectError([this] { open(); }, file, 0, problem);
  }
};

TEST_F(Damage, ShortLastFileGivesTheRecordsThatAreWhole) {
  Bytes bytes = recordRun(2, 3);
  bytes.resize(43);
  writeBytes(div2, bytes);
  fs::remove(div3);
  const Recording recording = open();
  EXPECT_EQ(recording.recordCount(), 3U);
  EXPECT_EQ(recording.divFiles()[1].records, 1U);
  EXPECT_EQ(recording.divFiles()[1].trailingBytes, 21U);
  EXPECT_EQ(recording.record(2).pixels[5], 26);
}

TEST_F(Damage, EmptyDataFileHasNoRecords) {
  writeBytes(div3, {});
  EXPECT_EQ(open().recordCount(), 4U);
  EXPECT_EQ(open().divFiles()[2].records, 0U);
}

TEST_F(Damage, WithoutItsFolderARecordingIsEmpty) {
  fs::remove_all(folder.path() / "rec");
  EXPECT_EQ(open().recordCount(), 0U);
  EXPECT_THROW(open().record(0), std::out_of_range);
}

TEST_F(Damage, RecordsBehindAMissingFileKeepTheirPlace) {
  fs::remove(div2);
  const Recording recording = open();
  EXPECT_EQ(recording.recordCount(), 3U);
  EXPECT_EQ(recording.record(2).place, 4U);
  EXPECT_EQ(recording.record(2).fileNumber, 3U);
}

TEST_F(Damage, RecordsBehindAShortFileKeepTheirPlace) {
  writeBytes(div1, recordRun(0, 0));
  EXPECT_EQ(open().recordCount(), 4U);
  EXPECT_EQ(open().record(1).place, 2U);
}

TEST_F(Damage, BytesBehindAFullFileAreTrailing) {
  writeBytes(div1, recordRun(0, 4));
  const Recording recording = open();
  EXPECT_EQ(recording.divFiles()[0].records, 2U);
  EXPECT_EQ(recording.divFiles()[0].trailingBytes, 66U);
  EXPECT_EQ(recording.record(2).fileNumber, 2U);
}

TEST_F(Damage, RecordsBeyondTheAnnouncedCountAreTrailing) {
  writeBytes(div3, recordRun(4, 5));
  EXPECT_EQ(open().recordCount(), 5U);
  EXPECT_EQ(open().divFiles()[2].trailingBytes, 22U);
}

TEST_F(Damage, FilesBeyondTheAnnouncedCountAreNotListed) {
  writeBytes(folder / "rec/rec_0004.div", recordRun(0, 1));
  writeBytes(folder / "rec/rec_4294967295.div", recordRun(0, 1));
  EXPECT_EQ(open().divFiles().size(), 3U);
}

TEST_F(Damage, FileThatShrankAfterOpeningIsAnError) {
  const Recording recording = open();
  writeBytes(div3, Bytes(10));
  TEST_READER::expectError([&] { recording.record(4); }, div3, 10, "the file has become shorter");
}

TEST_F(Damage, FileThatVanishedAfterOpeningIsAnError) {
  const Recording recording = open();
  fs::remove(div3);
  EXPECT_THROW(recording.record(4), KPF_READER::RecordingError);
  EXPECT_EQ(recording.record(3).sequenceNumber, 3U);
}

TEST_F(Damage, FolderInPlaceOfAFileIsAnError) {
  fs::remove(div2);
  fs::create_directory(div2);
  expectRefusalToOpen(div2, "not a file");
}

TEST_F(Damage, FolderInPlaceOfTheHeaderIsAnError) {
  fs::remove(header);
  fs::create_directory(header);
  EXPECT_THROW(open(), KPF_READER::RecordingError);
}

TEST_F(Damage, FolderInPlaceOfTheStatusFileIsAnError) {
  fs::create_directory(header + ".incomplete.txt");
  TEST_READER::expectError([this] { open().statusFile(); }, header + ".incomplete.txt", 0,
                           "not a file");
}

TEST_F(Damage, FileInPlaceOfTheFolderLeavesTheRecordingEmpty) {
  fs::remove_all(folder.path() / "rec");
  TEST_SUPPORT::writeText(folder / "rec", "not a folder");
  EXPECT_EQ(open().recordCount(), 0U);
}

TEST_F(Damage, MissingHeaderIsAnError) {
  fs::remove(header);
  EXPECT_THROW(open(), KPF_READER::RecordingError);
}

#ifndef _WIN32
TEST_F(Damage, FifoInPlaceOfAFileIsAnErrorAndNotWaitedFor) {
  fs::remove(div2);
  ASSERT_EQ(mkfifo(div2.c_str(), 0600), 0);
  expectRefusalToOpen(div2, "not a file");
}

TEST_F(Damage, FifoInPlaceOfTheHeaderIsAnErrorAndNotWaitedFor) {
  fs::remove(header);
  ASSERT_EQ(mkfifo(header.c_str(), 0600), 0);
  expectRefusalToOpen(header, "not a file");
}

TEST_F(Damage, LinkToNowhereInPlaceOfAFileIsAnError) {
  fs::remove(div2);
  fs::create_symlink("nowhere", div2);
  EXPECT_THROW(open(), KPF_READER::RecordingError);
}
#endif

}  // namespace

#include "tools/kpf/records/data_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

#include "kpf_reader.h"
#include "tests/support/files.h"

namespace {

using KPF_READER::RecordingError;
using KPF_TOOL::DataFile;
using testing::AnyOf;
using testing::HasSubstr;

class DataFiles : public testing::Test {
 protected:
  DataFiles() { TEST_SUPPORT::writeBytes(path_, {1, 2, 3, 4, 5}); }

  TEST_SUPPORT::TemporaryFolder folder_;
  const std::string path_ = folder_ / "file";
};

TEST_F(DataFiles, AreReadAtAnyPlace) {
  const DataFile file(path_);
  std::array<unsigned char, 2> bytes{};
  EXPECT_EQ(file.read(3, bytes), 2U);
  EXPECT_EQ(bytes, (std::array<unsigned char, 2>{4, 5}));
  EXPECT_EQ(file.read(0, bytes), 2U);
  EXPECT_EQ(bytes, (std::array<unsigned char, 2>{1, 2}));
}

TEST_F(DataFiles, GiveFewerBytesAtTheirEnd) {
  const DataFile file(path_);
  std::array<unsigned char, 4> bytes{};
  EXPECT_EQ(file.read(3, bytes), 2U);
  EXPECT_EQ(file.read(5, bytes), 0U);
  EXPECT_EQ(file.read(1000, bytes), 0U);
}

TEST_F(DataFiles, MayBecomeShorterWhileTheyAreOpen) {
  const DataFile file(path_);
  std::filesystem::resize_file(path_, 1);
  std::array<unsigned char, 4> bytes{};
  EXPECT_EQ(file.read(0, bytes), 1U);
  EXPECT_EQ(file.read(1, bytes), 0U);
}

TEST_F(DataFiles, ThatAreNotThereAreNamed) {
  try {
    const DataFile file(folder_ / "none");
    FAIL();
  } catch (const RecordingError& error) {
    EXPECT_EQ(error.file(), folder_ / "none");
    // In words of the system, and of Wine.
    EXPECT_THAT(error.what(), AnyOf(HasSubstr("o such file"), HasSubstr("ile not found"),
                                    HasSubstr("annot find the file")));
  }
}

TEST_F(DataFiles, ThatAreFoldersCannotBeRead) {
  std::array<unsigned char, 4> bytes{};
  EXPECT_THROW(DataFile(folder_ / "").read(0, bytes), RecordingError);
}

TEST_F(DataFiles, TellWhereAHoleEnds) {
  const DataFile file(path_);
  EXPECT_EQ(file.storedFrom(2), 2U);
  std::filesystem::resize_file(path_, 100 << 20);
  const std::uint64_t end = file.storedFrom(50 << 20);
  // The end of the file where the system can tell, else that nothing is known.
  EXPECT_TRUE(end == 100 << 20 || end == 50 << 20) << end;
}

}  // namespace

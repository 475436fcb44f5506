// The folder of a recording goes away, or may no longer be written, between two frames.
#include <filesystem>

#include "interface/vlm_internal_tables.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

#ifndef _WIN32
#include <unistd.h>
#endif

namespace {

class FailingFolder : public TEST_SUPPORT::LibraryTest {
 protected:
  FailingFolder() {
    configuration.width = 4;
    configuration.height = 1;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 1;
    configuration.frameCount = 6;
    vxCreatePackStreamer(folder / "rec.kpf", configuration);
    VLM_INTERNAL::streamVector[0]->framesPerDivFile = 2;
    for (int i = 0; i < 2; ++i) vxAddTiffImageData(1, image);
    output();
  }

  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  const unsigned char image[4] = {1, 2, 3, 4};
};

TEST_F(FailingFolder, ThatIsGoneRefusesTheFramesOfTheNextFile) {
  VLM_INTERNAL::streamVector[0]->divFile.close();  // Windows removes no open file
  std::filesystem::remove_all(folder.path() / "rec");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(vxAddTiffImageData(1, image), 3);
    EXPECT_EQ(output(), "queueFrame: the divFile is not open.\n");
  }
  EXPECT_EQ(vxClosePackStreamer(1), 5);
  EXPECT_TRUE(std::filesystem::exists(folder / "rec.kpf.incomplete.txt"));
}

#ifndef _WIN32
TEST_F(FailingFolder, ThatMayNotBeWrittenKeepsTheEarlierRecords) {
  std::filesystem::permissions(folder.path() / "rec", std::filesystem::perms::owner_read |
                                                          std::filesystem::perms::owner_exec |
                                                          std::filesystem::perms::others_exec);
  std::filesystem::permissions(folder.path(), std::filesystem::perms::others_exec,
                               std::filesystem::perm_options::add);
  constexpr uid_t kNobody = 65534;  // root may write everywhere
  const bool root = geteuid() == 0;
  if (root) {
    ASSERT_EQ(seteuid(kNobody), 0);
  }
  EXPECT_EQ(vxAddTiffImageData(1, image), 3);
  if (root) {
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_EQ(output(), "queueFrame: the divFile is not open.\n");
  EXPECT_EQ(VLM_INTERNAL::streamVector[0]->seqNum, 2U);
  std::filesystem::permissions(folder.path() / "rec", std::filesystem::perms::owner_all);
  EXPECT_EQ(TEST_SUPPORT::readBytes(folder / "rec/rec_0001.div").size(), 40U);
}
#endif

}  // namespace

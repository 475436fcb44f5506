// Long recordings: every byte arrives, and memory does not grow. Takes about 5 GB below TMPDIR.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/library_test.h"
#ifdef __linux__
#include "tests/support/cached_pages.h"
#endif
#include "vlm_internal.h"

namespace {

class Soak : public TEST_SUPPORT::LibraryTest {
 protected:
  unsigned create(unsigned width, unsigned height, int bits, unsigned frames) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = width;
    configuration.height = height;
    configuration.bitsPerPixel = bits;
    configuration.frameRate = 1000;
    configuration.frameCount = frames;
    return vxCreatePackStreamer(folder / "rec.kpf", configuration);
  }

  /// Bytes of this process that lie in memory.
  static std::uintmax_t resident() {
    std::ifstream statm("/proc/self/statm");
    std::uintmax_t total = 0, pages = 0;
    statm >> total >> pages;
    return pages * 4096;
  }

  std::uintmax_t sizeOf(const std::string& number) const {
    return std::filesystem::file_size(folder.path() / "rec" / ("rec_" + number + ".div"));
  }
};

TEST_F(Soak, HundredThousandSmallFrames) {
  const unsigned stream = create(64, 64, 12, 100000);
  std::vector<unsigned char> image(2 * 64 * 64);
  std::uintmax_t early = 0;
  for (unsigned n = 0; n < 100000; ++n) {
    image.assign(image.size(), static_cast<unsigned char>(n));
    ASSERT_EQ(vxAddTiffImageData(stream, image.data()), n == 99999 ? 4 : 3);
    if (n == 1000) early = resident();
  }
  EXPECT_LT(resident(), early + vxGetPackedSize(64, 64, 12) + 65536);
  EXPECT_EQ(sizeOf("0001"), 100000ULL * (16 + 6144));
}

#ifdef __linux__
// However long it gets, a recording takes no more of the page cache than its last window.
TEST_F(Soak, PageCacheStaysFlatOverFiveGigabytes) {
  if (!TEST_SUPPORT::givesPagesBack(folder.path())) {
    GTEST_SKIP() << "the temporary folder lies on a file system that keeps its pages";
  }
  const unsigned frames = 5120;  // records of 1 MiB and 16 bytes: 2047 a file
  const unsigned stream = create(1024, 1024, 8, frames);
  const std::vector<unsigned char> image(1024 * 1024, 7);
  for (unsigned n = 1; n <= frames; ++n) {
    ASSERT_EQ(vxAddTiffImageData(stream, image.data()), n == frames ? 4 : 3);
    if (n % 512 == 0) {
      EXPECT_LE(TEST_SUPPORT::cachedBytesBelow(folder.path()), 64U << 20) << n << " MiB";
    }
  }
}
#endif

TEST_F(Soak, TwoFullDataFilesAndMore) {
  // Records of 8,388,624 bytes: 255 a file, 2,139,099,120 bytes each.
  const unsigned frames = 2 * 255 + 3;
  const unsigned stream = create(4096, 2048, 8, frames);
  std::vector<unsigned char> image(4096 * 2048);
  std::uintmax_t early = 0;
  for (unsigned n = 0; n < frames; ++n) {
    image[0] = static_cast<unsigned char>(n);
    ASSERT_EQ(vxAddTiffImageData(stream, image.data()), n == frames - 1 ? 4 : 3);
    if (n == 10) early = resident();
  }
  EXPECT_LT(resident(), early + image.size());
  EXPECT_EQ(sizeOf("0001"), 2139099120U);
  EXPECT_EQ(sizeOf("0002"), 2139099120U);
  EXPECT_EQ(sizeOf("0003"), 3U * 8388624U);
}

}  // namespace

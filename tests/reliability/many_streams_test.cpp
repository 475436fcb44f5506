// Many streams, long names: nothing is used up.
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

class ManyStreams : public TEST_SUPPORT::LibraryTest {
 protected:
  ManyStreams() {
    configuration.width = 4;
    configuration.height = 1;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 1;
    configuration.frameCount = 2;
  }

#ifndef _WIN32
  static std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
  }
#endif

  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  const unsigned char image[4] = {1, 2, 3, 4};
};

TEST_F(ManyStreams, TenThousandOneAfterTheOtherLeaveNothingOpen) {
#ifdef _WIN32
  constexpr int kStreams = 300;  // files are slow there
#else
  constexpr int kStreams = 10000;
  const auto before = openDescriptors();
#endif
  for (int i = 0; i < kStreams; ++i) {
    ASSERT_EQ(vxCreatePackStreamer(folder / "rec.kpf", configuration), 1U);
    ASSERT_EQ(vxAddTiffImageData(1, image), 3);
    ASSERT_EQ(vxClosePackStreamer(1), 5);
  }
  output();
#ifndef _WIN32
  EXPECT_EQ(openDescriptors(), before);
#endif
  EXPECT_EQ(TEST_SUPPORT::readBytes(folder / "rec/rec_0001.div").size(), 20U);
}

TEST_F(ManyStreams, TwoHundredAtOnceKeepTheirFramesApart) {
  for (unsigned i = 1; i <= 200; ++i) {
    ASSERT_EQ(vxCreatePackStreamer(folder / ("rec" + std::to_string(i) + ".kpf"), configuration),
              i);
  }
  for (unsigned i = 1; i <= 200; ++i) {
    const unsigned char own[4] = {static_cast<unsigned char>(i), 0, 0, 0};
    ASSERT_EQ(vxAddTiffImageData(i, own), 3);
  }
  for (unsigned i = 1; i <= 200; ++i) {
    const std::string stem = "rec" + std::to_string(i);
    const auto bytes = TEST_SUPPORT::readBytes(folder.path() / stem / (stem + "_0001.div"));
    ASSERT_EQ(bytes.size(), 20U);
    EXPECT_EQ(bytes[16], i);
    EXPECT_EQ(vxClosePackStreamer(i), 5);
  }
}

TEST_F(ManyStreams, NameOfFourThousandBytesIsRefusedInOneLine) {
  output();
  EXPECT_EQ(vxCreatePackStreamer(folder / (std::string(4000, 'n') + ".kpf"), configuration), 0U);
  const std::string logged = output();
  const std::string first = logged.substr(0, logged.find('\n'));
  EXPECT_EQ(first.size(), 1023U);
  EXPECT_TRUE(first.starts_with("prepareForWriting: Unable to open "));
}

TEST_F(ManyStreams, AddingAfterTheEndGoesOnBeingRefused) {
  vxCreatePackStreamer(folder / "rec.kpf", configuration);
  for (int i = 0; i < 2; ++i) vxAddTiffImageData(1, image);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(vxAddTiffImageData(1, image), 4);
  EXPECT_EQ(TEST_SUPPORT::readBytes(folder / "rec/rec_0001.div").size(), 40U);
}

}  // namespace

// Sizes, and conversion into the caller's own buffer.
#include <chrono>
#include <cstddef>

#include "format/kpf_layout.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using TEST_SUPPORT::Bytes;

class Convert : public TEST_SUPPORT::LibraryTest {};

TEST_F(Convert, PackedSizeIsHeaderAndPixels) {
  EXPECT_EQ(vxGetPackedSize(640, 480, 8), 16U + 307200U);
  EXPECT_EQ(vxGetPackedSize(640, 480, 12), 16U + 460800U);
  EXPECT_EQ(vxGetPackedSize(640, 480, 16), 16U + 460800U);
  EXPECT_EQ(vxGetPackedSize(640, 480, 0), 16U + 460800U);
  EXPECT_EQ(vxGetPackedSize(0, 480, 8), 16U);
}

TEST_F(Convert, PackedSizeWrapsAt32Bits) {
  EXPECT_EQ(vxGetPackedSize(65536, 65536, 8), 16U);
  EXPECT_EQ(vxGetPackedSize(0xFFFFFFFF, 1, 8), 15U);
  EXPECT_EQ(vxGetPackedSize(32768, 65536, 12), 16U + (1U << 30));
}

TEST_F(Convert, WritesHeaderAndPixelsAndNothingElse) {
  const unsigned char samples[] = {0xC0, 0xAB, 0x30, 0x12};
  Bytes out(16 + 3 + 4, 0xEE);
  EXPECT_EQ(vxConvertTiffImageData(samples, out.data(), 0x01020304, 2, 1, 12), 0);
  EXPECT_EQ(Bytes(out.begin(), out.begin() + 4), (Bytes{4, 3, 2, 1}));
  EXPECT_EQ(Bytes(out.begin() + 16, out.end()), (Bytes{0xAB, 0x3C, 0x12, 0xEE, 0xEE, 0xEE, 0xEE}));
  EXPECT_EQ(output(), "");
}

TEST_F(Convert, StampsThePresentTime) {
  namespace layout = KPF_FORMAT::FRAME_HEADER;
  using std::chrono::microseconds;
  using std::chrono::system_clock;
  const auto now = [] {
    return std::chrono::floor<microseconds>(system_clock::now()).time_since_epoch().count();
  };
  const unsigned char pixel[4] = {};
  Bytes out(17);
  const auto before = now();
  ASSERT_EQ(vxConvertTiffImageData(pixel, out.data(), 0, 1, 1, 8), 0);
  const auto after = now();
  const auto rest = static_cast<long long>(KPF_FORMAT::load(out.data(), layout::kMicroseconds));
  const auto stamped =
      static_cast<long long>(KPF_FORMAT::load(out.data(), layout::kSeconds)) * 1000000 + rest;
  EXPECT_LT(rest, 1000000);
  EXPECT_LE(before, stamped);
  EXPECT_LE(stamped, after);
}

TEST_F(Convert, ResultIsWhatAPackedStreamTakes) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 5;
  configuration.height = 3;
  configuration.bitsPerPixel = 12;
  configuration.frameCount = 1;
  Bytes image(12 * 3);
  for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<unsigned char>(17 * i);
  Bytes record(vxGetPackedSize(5, 3, 12));
  ASSERT_EQ(vxConvertTiffImageData(image.data(), record.data(), 7, 5, 3, 12), 0);
  const unsigned stream = vxCreatePackStreamer(folder / "rec.kpf", configuration);
  EXPECT_EQ(vxAddPackedData(stream, record.data()), 4);
  EXPECT_EQ(TEST_SUPPORT::readBytes(folder / "rec/rec_0001.div"), record);
}

TEST_F(Convert, NullImagesAreToldApartTheInputFirst) {
  unsigned char image[16 + 4] = {};
  EXPECT_EQ(vxConvertTiffImageData(nullptr, image, 0, 1, 1, 8), 14);
  EXPECT_EQ(output(), "vxConvertTiffImageData: imageInPtr is nullptr!\n");
  EXPECT_EQ(vxConvertTiffImageData(image, nullptr, 0, 1, 1, 8), 14);
  EXPECT_EQ(output(), "vxConvertTiffImageData: imageOutPtr is nullptr!\n");
  EXPECT_EQ(vxConvertTiffImageData(nullptr, nullptr, 0, 1, 1, 8), 14);
  EXPECT_EQ(output(), "vxConvertTiffImageData: imageInPtr is nullptr!\n");
}

TEST_F(Convert, ImageTooLargeToPackFailsAndWritesNothing) {
  const unsigned char image[4] = {};
  Bytes out(16, 0xEE);
  EXPECT_EQ(vxConvertTiffImageData(image, out.data(), 0, 65536, 65536, 8), 23);
  EXPECT_EQ(output(), "vxConvertTiffImageData: setTiffImageData() failed.\n");
  EXPECT_EQ(out, Bytes(16, 0xEE));
}

TEST_F(Convert, ImageWithoutPixelsIsOnlyAHeader) {
  const unsigned char image[4] = {};
  Bytes out(17, 0xEE);
  EXPECT_EQ(vxConvertTiffImageData(image, out.data(), 3, 0, 9, 8), 0);
  EXPECT_EQ(out[0], 3);
  EXPECT_EQ(out[16], 0xEE);
}

}  // namespace

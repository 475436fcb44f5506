// Recordings that are read while they are written.
#include <cstdint>
#include <filesystem>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::Bytes;

class Growing : public TEST_CAPI::CFront {};

TEST_F(Growing, RefreshShowsWhatWasRecordedSince) {
  kpf_writer* const writer = begin(smallOptions());
  kpf_reader* const reader = open();
  EXPECT_EQ(describe(reader).frame_count, 0U);
  EXPECT_EQ(describe(reader).announced, KPF_FRAMES_UNKNOWN);
  for (std::uint32_t n = 0; n < 3; ++n) {
    const Bytes pixels(8, static_cast<unsigned char>(n + 1));
    EXPECT_OK(kpf_writer_add_image(writer, pixels.data(), 0, nullptr));
    EXPECT_EQ(describe(reader).frame_count, n) << "as it was when last looked at";
    EXPECT_OK(kpf_reader_refresh(reader));
    EXPECT_EQ(describe(reader).frame_count, n + 1);
    EXPECT_EQ(describe(reader).complete, 0U);
    kpf_frame frame = KPF_FRAME_INIT;
    EXPECT_OK(kpf_reader_frame(reader, n, &frame));
    EXPECT_EQ(*static_cast<const unsigned char*>(frame.pixels), n + 1);
  }
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_OK(kpf_reader_refresh(reader));
  EXPECT_EQ(describe(reader).announced, 3U);
  EXPECT_EQ(describe(reader).complete, 1U);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Growing, FailedRefreshLeavesTheReaderAndItsPixels) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  kpf_reader* const reader = open();
  kpf_frame frame = KPF_FRAME_INIT;
  EXPECT_OK(kpf_reader_frame(reader, 0, &frame));
  std::filesystem::rename(name, folder / "elsewhere.kpf");
  EXPECT_EQ(kpf_reader_refresh(reader), KPF_ERROR_OPEN);
  EXPECT_EQ(describe(reader).frame_count, 1U);
  EXPECT_EQ(*static_cast<const unsigned char*>(frame.pixels), 1);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Growing, AnotherRecordingUnderTheNameIsTold) {
  EXPECT_OK(kpf_writer_close(begin(smallOptions()), nullptr));
  kpf_reader* const reader = open();
  kpf_writer_options options = smallOptions();
  options.width = 6;
  options.replace = 1;
  EXPECT_OK(kpf_writer_close(begin(options), nullptr));
  EXPECT_EQ(kpf_reader_refresh(reader), KPF_ERROR_FORMAT);
  EXPECT_EQ(describe(reader).width, 4U);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Growing, WriterThatNobodyClosedReadsAsCutShort) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  kpf_reader* const reader = open();
  EXPECT_EQ(describe(reader).frame_count, 1U);
  EXPECT_EQ(describe(reader).announced, KPF_FRAMES_UNKNOWN);
  EXPECT_EQ(describe(reader).complete, 0U);
  EXPECT_OK(kpf_reader_close(reader));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
}

}  // namespace

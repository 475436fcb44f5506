// Recordings made through the C front, byte by byte.
#include <cstddef>
#include <filesystem>
#include <string>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::entriesBelow;
using TEST_SUPPORT::readBytes;
using testing::ElementsAre;

class Writer : public TEST_CAPI::CFront {};

Bytes slice(const Bytes& bytes, std::size_t from, std::size_t size) {
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(from);
  return {first, first + static_cast<std::ptrdiff_t>(size)};
}

TEST_F(Writer, RecordIsNumberTimeAndPixels) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 4, nullptr));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_THAT(entriesBelow(folder.path()), ElementsAre("clip", "clip.kpf", "clip/clip_0001.div"));
  const Bytes expected = {0, 0, 0, 0, 0xE8, 3,    0, 0, 0, 0, 0, 0, 0,    0, 0, 0,
                          1, 2, 3, 4, 5,    6,    7, 8, 1, 0, 0, 0, 0xE8, 3, 0, 0,
                          0, 0, 0, 0, 0xA0, 0x86, 1, 0, 1, 2, 3, 4, 5,    6, 7, 8};
  EXPECT_EQ(readBytes(data), expected);
}

TEST_F(Writer, HeaderHoldsWhatTheOptionsSay) {
  kpf_writer_options options = smallOptions();
  const std::string text5(151, 'a');
  options.text5 = text5.c_str();
  options.text2 = "pier";
  options.value3 = 3, options.value5 = 2, options.value7 = -7;
  options.frame_count = 1;
  kpf_writer* const writer = begin(options);
  EXPECT_OK(kpf_writer_add_lost(writer));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  const Bytes header = readBytes(name);
  ASSERT_EQ(header.size(), 2998U);
  EXPECT_EQ(slice(header, 5, 151), Bytes(151, 'a'));
  EXPECT_THAT(slice(header, 156, 8), ElementsAre(0, 0, 0, 0, 0, 0, 0x1C, 0xC0));  // -7.0
  EXPECT_THAT(slice(header, 176, 8), ElementsAre(4, 0, 2, 0, 0, 0, 0, 0));
  EXPECT_THAT(slice(header, 200, 8), ElementsAre(0, 0, 0, 0, 0, 0, 8, 0x40));  // 3.0
  EXPECT_THAT(slice(header, 324, 5), ElementsAre('p', 'i', 'e', 'r', 0));
  EXPECT_THAT(slice(header, 468, 4), ElementsAre(1, 0, 0, 0));
  EXPECT_THAT(slice(header, 1806, 4), ElementsAre(2, 0, 0, 0));
}

TEST_F(Writer, RowStrideSkipsWhatLiesBetweenRows) {
  const Bytes padded = {1, 2, 3, 4, 99, 99, 99, 5, 6, 7, 8};
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_image(writer, padded.data(), 7, nullptr));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_EQ(slice(readBytes(data), 16, 8), image);
}

TEST_F(Writer, OwnStampReplacesTheRatesTime) {
  kpf_stamp stamp = KPF_STAMP_INIT;
  stamp.seconds = -2;
  stamp.microseconds = 999999;
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_lost(writer));
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, &stamp));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_THAT(slice(readBytes(data), 24, 16), ElementsAre(1, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF,
                                                          0xFF, 0xFF, 0xFF, 0x3F, 0x42, 0x0F, 0));
}

TEST_F(Writer, LostFrameIsARecordOfZeros) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_lost(writer));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_EQ(readBytes(data), Bytes(24));
}

TEST_F(Writer, TrueCountIsSetAtClose) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_THAT(slice(readBytes(name), 468, 4), ElementsAre(0xFF, 0xFF, 0xFF, 0xFF));
  const Bytes before = readBytes(name);
  for (int i = 0; i < 3; ++i) EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  kpf_writer_counts counts = KPF_WRITER_COUNTS_INIT;
  EXPECT_OK(kpf_writer_close(writer, &counts));
  EXPECT_EQ(counts.added, 3U);
  Bytes expected = before;
  expected[468] = 3, expected[469] = 0, expected[470] = 0, expected[471] = 0;
  EXPECT_EQ(readBytes(name), expected);
  EXPECT_FALSE(std::filesystem::exists(name + ".incomplete.txt"));
}

TEST_F(Writer, RecordingOfNoFramesIsOne) {
  EXPECT_OK(kpf_writer_close(begin(smallOptions()), nullptr));
  EXPECT_THAT(slice(readBytes(name), 468, 4), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(entriesBelow(folder.path()), ElementsAre("clip", "clip.kpf"));
}

TEST_F(Writer, FewerFramesThanAnnouncedAreToldAtClose) {
  kpf_writer_options options = smallOptions();
  options.frame_count = 3;
  kpf_writer* const writer = begin(options);
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_EQ(kpf_writer_close(writer, nullptr), KPF_ERROR_INCOMPLETE);
  EXPECT_THAT(kpf_error_text(), testing::EndsWith("2 of the announced frames were not added"));
  EXPECT_TRUE(std::filesystem::exists(name + ".incomplete.txt"));
  EXPECT_THAT(slice(readBytes(name), 468, 4), ElementsAre(3, 0, 0, 0));
}

TEST_F(Writer, FrameTooManyIsRefusedAndChangesNothing) {
  kpf_writer_options options = smallOptions();
  options.frame_count = 2;
  kpf_writer* const writer = begin(options);
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_OK(kpf_writer_add_lost(writer));
  EXPECT_EQ(kpf_writer_add_image(writer, image.data(), 0, nullptr), KPF_ERROR_FULL);
  EXPECT_EQ(kpf_writer_add_lost(writer), KPF_ERROR_FULL);
  EXPECT_EQ(kpf_writer_add_packed(writer, image.data(), 8, nullptr), KPF_ERROR_FULL);
  const kpf_writer_counts seen = counts(writer);
  EXPECT_EQ(seen.announced, 2U);
  EXPECT_EQ(seen.added, 2U);
  EXPECT_EQ(seen.lost, 1U);
  EXPECT_EQ(seen.failed, 0U);
  EXPECT_EQ(seen.refused, 3U);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_EQ(readBytes(data).size(), 48U);
}

TEST_F(Writer, DurableRecordingHasTheSameBytes) {
  kpf_writer_options options = smallOptions();
  options.durable = 1;
  kpf_writer* const writer = begin(options);
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  EXPECT_EQ(slice(readBytes(data), 16, 8), image);
}

TEST_F(Writer, NothingGoesToStandardOutput) {
  testing::internal::CaptureStdout();
  kpf_writer_options options = smallOptions();
  options.frame_count = 2;
  kpf_writer_close(begin(options), nullptr);  // logs that it is incomplete
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace

// Recordings read through the C front, whole ones and damaged ones.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>

#include "tests/capi/c_front_test.h"
#include "tests/reader/recording_bytes.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::readBytes;
using TEST_SUPPORT::writeBytes;

class Reader : public TEST_CAPI::CFront {
 protected:
  /// A recording of images 1, lost, 3 and the handle that reads it.
  kpf_reader* openThree() {
    kpf_writer_options options = smallOptions();
    options.text2 = "pier";
    kpf_writer* const writer = begin(options);
    EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
    EXPECT_OK(kpf_writer_add_lost(writer));
    EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
    EXPECT_OK(kpf_writer_close(writer, nullptr));
    return open();
  }

  static kpf_frame frame(kpf_reader* reader, std::uint32_t n) {
    kpf_frame frame = KPF_FRAME_INIT;
    EXPECT_OK(kpf_reader_frame(reader, n, &frame));
    return frame;
  }
};

Bytes pixelsOf(const kpf_frame& frame, std::size_t size) {
  const auto* const first = static_cast<const unsigned char*>(frame.pixels);
  return {first, first + size};
}

TEST_F(Reader, DescribesTheRecording) {
  kpf_reader* const reader = openThree();
  const kpf_recording_info info = describe(reader);
  EXPECT_EQ(info.width, 4U);
  EXPECT_EQ(info.height, 2U);
  EXPECT_EQ(info.bits, 8U);
  EXPECT_EQ(info.frame_rate, 10.0);
  EXPECT_EQ(info.frame_count, 3U);
  EXPECT_EQ(info.announced, 3U);
  EXPECT_EQ(info.complete, 1U);
  EXPECT_EQ(info.frames_per_file, 2147483647U / 24);
  EXPECT_EQ(info.frame_size, 8U);
  EXPECT_EQ(info.has_status_file, 0U);
  EXPECT_STREQ(info.text2, "pier");
  EXPECT_EQ(std::memcmp(info.identifier, readBytes(name).data() + 1698, 16), 0);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Reader, FrameIsNumberTimeAndPixelsInPlace) {
  kpf_reader* const reader = openThree();
  const kpf_frame third = frame(reader, 2);
  EXPECT_EQ(third.lost, 0U);
  EXPECT_EQ(third.number, 2U);
  EXPECT_EQ(third.seconds, 1000);
  EXPECT_EQ(third.microseconds, 200000U);
  EXPECT_EQ(third.file_number, 1U);
  EXPECT_EQ(third.pixel_offset, 2 * 24 + 16U);
  EXPECT_EQ(pixelsOf(third, 8), image);
  EXPECT_EQ(frame(reader, 2).pixels, third.pixels) << "mapped, not copied";
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Reader, LostFrameHasNoPixels) {
  kpf_reader* const reader = openThree();
  const kpf_frame lost = frame(reader, 1);
  EXPECT_EQ(lost.lost, 1U);
  EXPECT_EQ(lost.number, 1U);
  EXPECT_EQ(lost.pixels, nullptr);
  std::uint16_t samples[8] = {7, 7, 7, 7, 7, 7, 7, 7};
  EXPECT_EQ(kpf_reader_unpack(reader, 1, samples, 8, KPF_SAMPLES_VALUE), KPF_ERROR_LOST);
  EXPECT_THAT(samples, testing::Each(7));
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Reader, BehindTheLastFrameThereIsNone) {
  kpf_reader* const reader = openThree();
  kpf_frame none = KPF_FRAME_INIT;
  EXPECT_EQ(kpf_reader_frame(reader, 3, &none), KPF_ERROR_RANGE);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("there is no frame 3 of 3"));
  EXPECT_EQ(kpf_reader_frame(reader, 0xFFFFFFFF, &none), KPF_ERROR_RANGE);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Reader, DataFileIsNamedWhetherThereOrNot) {
  kpf_reader* const reader = openThree();
  const char* path = nullptr;
  EXPECT_OK(kpf_reader_data_file(reader, 1, &path));
  EXPECT_EQ(readBytes(path).size(), 72U);
  EXPECT_OK(kpf_reader_data_file(reader, 12, &path));
  EXPECT_THAT(path, testing::EndsWith("clip_0012.div"));
  EXPECT_EQ(kpf_reader_data_file(reader, 0, &path), KPF_ERROR_ARGUMENT);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Reader, WhatIsNoRecordingIsRefused) {
  kpf_reader* reader = nullptr;
  EXPECT_EQ(kpf_reader_open(name.c_str(), nullptr, &reader), KPF_ERROR_OPEN);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("clip.kpf"));
  writeBytes(name, Bytes(2998, 'x'));
  EXPECT_EQ(kpf_reader_open(name.c_str(), nullptr, &reader), KPF_ERROR_FORMAT);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("not the header of a recording"));
  std::filesystem::remove(name);
  std::filesystem::create_directories(name);
  EXPECT_EQ(kpf_reader_open(name.c_str(), nullptr, &reader), KPF_ERROR_OPEN);
  EXPECT_EQ(reader, nullptr);
}

TEST_F(Reader, RecordingThatWasCutShortIsNotComplete) {
  EXPECT_OK(kpf_reader_close(openThree()));
  std::filesystem::resize_file(data, 60);
  kpf_reader* const reader = open();
  EXPECT_EQ(describe(reader).frame_count, 2U);
  EXPECT_EQ(describe(reader).announced, 3U);
  EXPECT_EQ(describe(reader).complete, 0U);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Reader, OpensForSparseAccessAndRefusesAnyOther) {
  EXPECT_OK(kpf_reader_close(openThree()));
  kpf_reader_options options = KPF_READER_OPTIONS_INIT;
  options.access = KPF_ACCESS_SPARSE;
  kpf_reader* reader = nullptr;
  EXPECT_OK(kpf_reader_open(name.c_str(), &options, &reader));
  EXPECT_EQ(pixelsOf(frame(reader, 0), 8), image);
  EXPECT_OK(kpf_reader_close(reader));
  options.access = 2;
  EXPECT_EQ(kpf_reader_open(name.c_str(), &options, &reader), KPF_ERROR_ARGUMENT);
}

/// Five frames of 3 x 2 pixels in data files of two records, made by hand.
class ReaderOfParts : public TEST_READER::HandMade {
 protected:
  kpf_reader* openParts() {
    kpf_reader* reader = nullptr;
    EXPECT_OK(kpf_reader_open(header.c_str(), nullptr, &reader));
    return reader;
  }
};

TEST_F(ReaderOfParts, FramesOfAMissingDataFileKeepTheirPlacesAndAreLost) {
  std::filesystem::remove(div2);
  kpf_reader* const reader = openParts();
  kpf_recording_info info = KPF_RECORDING_INFO_INIT;
  EXPECT_OK(kpf_reader_describe(reader, &info));
  EXPECT_EQ(info.frame_count, 5U);
  EXPECT_EQ(info.complete, 0U);
  EXPECT_EQ(info.frames_per_file, 2U);
  kpf_frame found = KPF_FRAME_INIT;
  for (std::uint32_t n = 0; n < 5; ++n) {
    EXPECT_OK(kpf_reader_frame(reader, n, &found));
    EXPECT_EQ(found.lost, n == 2 || n == 3 ? 1U : 0U) << n;
    EXPECT_EQ(found.number, n);
  }
  EXPECT_EQ(pixelsOf(found, 6), (Bytes{41, 42, 43, 44, 45, 46}));
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(ReaderOfParts, PixelsOfEveryDataFileStayUntilTheEnd) {
  kpf_reader* const reader = openParts();
  kpf_frame first = KPF_FRAME_INIT;
  kpf_frame last = KPF_FRAME_INIT;
  EXPECT_OK(kpf_reader_frame(reader, 0, &first));
  EXPECT_OK(kpf_reader_frame(reader, 4, &last));
  EXPECT_EQ(pixelsOf(first, 6), (Bytes{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(pixelsOf(last, 6), (Bytes{41, 42, 43, 44, 45, 46}));
  EXPECT_OK(kpf_reader_close(reader));
}

}  // namespace

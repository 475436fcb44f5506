// What the library writes, the reader gives back.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "interface/vlm_internal_tables.h"
#include "kpf_reader.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using KPF_READER::Recording;
using TEST_SUPPORT::Bytes;
using Samples = std::vector<std::uint16_t>;

struct Form {
  unsigned width;
  unsigned height;
  int bits;
};

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationOf(Form form, unsigned frames) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.text2 = "camera";
  configuration.text5 = "operator";
  configuration.width = form.width;
  configuration.height = form.height;
  configuration.bitsPerPixel = form.bits;
  configuration.frameRate = 50;
  configuration.frameCount = frames;
  configuration.startSeconds = 1700000000;
  return configuration;
}

/// An image whose every sample byte differs from its neighbours, rows padded to 4 bytes.
Bytes imageOf(Form form, unsigned frame) {
  const unsigned row = form.width * (form.bits == 8 ? 1 : 2);
  Bytes image((row + 3) / 4 * 4 * form.height);
  std::iota(image.begin(), image.end(), static_cast<unsigned char>(17 * frame + 1));
  return image;
}

/// The samples of that image as the recording can hold them.
Samples samplesOf(Form form, unsigned frame) {
  const Bytes image = imageOf(form, frame);
  const std::size_t stride = form.height == 0 ? 0 : image.size() / form.height;
  Samples samples;
  for (std::size_t i = 0; i < std::size_t{form.width} * form.height; ++i) {
    const std::size_t column = i % form.width;
    const unsigned char* row = image.data() + i / form.width * stride;
    const bool dropped = form.bits != 8 && column == form.width - 1 && form.width % 2 != 0;
    const int sample =
        form.bits == 8 ? row[column] << 8 : row[2 * column + 1] << 8 | (row[2 * column] & 0xF0);
    samples.push_back(static_cast<std::uint16_t>(dropped ? 0 : sample));
  }
  return samples;
}

class WrittenByLibrary : public TEST_SUPPORT::LibraryTest {
 protected:
  void add(Form form, unsigned frame) { vxAddTiffImageData(handle, imageOf(form, frame).data()); }

  void record(Form form, unsigned frames) {
    handle = vxCreatePackStreamer(name, configurationOf(form, frames));
    for (unsigned frame = 0; frame < frames; ++frame) add(form, frame);
    vxClosePackStreamer(handle);
  }

  void expectSamples(Form form, unsigned frames) {
    record(form, frames);
    const Recording recording(name);
    ASSERT_EQ(recording.recordCount(), frames);
    Samples samples(recording.header().pixelCount());
    for (unsigned frame = 0; frame < frames; ++frame) {
      recording.unpack(frame, samples);
      EXPECT_EQ(samples, samplesOf(form, frame)) << form.width << " x " << form.height;
    }
  }

  const std::string name = folder / "clip.kpf";
  unsigned handle = 0;
};

TEST_F(WrittenByLibrary, HeaderIsReadBack) {
  record({6, 4, 12}, 2);
  const KPF_READER::Header header = Recording(name).header();
  EXPECT_EQ(header.text2, "camera");
  EXPECT_EQ(header.text5, "operator");
  EXPECT_EQ(header.frameRate, 50.0);
  EXPECT_TRUE(header.packed12);
  EXPECT_EQ(header.frameCount, 2U);
  EXPECT_EQ(header.framesPerDivFile, 2147483647U / (16 + 36));
}

TEST_F(WrittenByLibrary, SamplesAreReadBackAt8Bits) {
  for (const unsigned width : {1U, 2U, 3U, 5U, 8U, 33U}) expectSamples({width, 3, 8}, 2);
}

TEST_F(WrittenByLibrary, SamplesAreReadBackAt12Bits) {
  for (const unsigned width : {1U, 2U, 3U, 5U, 8U, 33U, 64U}) expectSamples({width, 5, 12}, 2);
}

TEST_F(WrittenByLibrary, TimesAreReadBack) {
  record({2, 2, 8}, 3);
  const auto last = Recording(name).record(2);
  EXPECT_EQ(last.sequenceNumber, 2U);
  EXPECT_EQ(last.seconds, 1700000000);
  EXPECT_EQ(last.microseconds, 39999U);  // 0.04 s beside 1.7e9 s, cut to the microsecond
}

TEST_F(WrittenByLibrary, PlaceholdersAreReadBack) {
  const Form form{4, 4, 12};
  handle = vxCreatePackStreamer(name, configurationOf(form, 3));
  add(form, 0);
  vxAddPlaceholder(handle);
  add(form, 2);
  const Recording recording(name);
  EXPECT_FALSE(recording.record(0).placeholder);
  EXPECT_TRUE(recording.record(1).placeholder);
  EXPECT_EQ(recording.record(2).sequenceNumber, 2U);
}

TEST_F(WrittenByLibrary, RecordsRollOverIntoTheNextFile) {
  const Form form{4, 2, 8};
  handle = vxCreatePackStreamer(name, configurationOf(form, 5));
  VLM_INTERNAL::streamVector[handle - 1]->framesPerDivFile = 2;
  for (unsigned frame = 0; frame < 5; ++frame) add(form, frame);
  Bytes header = TEST_SUPPORT::readBytes(name);
  std::fill_n(header.begin() + 464, 4, static_cast<unsigned char>(0));
  header[464] = 2;
  TEST_SUPPORT::writeBytes(name, header);

  const Recording recording(name);
  EXPECT_EQ(recording.divFiles().size(), 3U);
  EXPECT_EQ(recording.record(4).fileNumber, 3U);
  EXPECT_EQ(recording.record(4).sequenceNumber, 4U);
}

TEST_F(WrittenByLibrary, StreamClosedEarlyHasItsStatusFile) {
  const Form form{4, 2, 8};
  handle = vxCreatePackStreamer(name, configurationOf(form, 5));
  add(form, 0);
  vxClosePackStreamer(handle);
  const Recording recording(name);
  EXPECT_EQ(recording.header().frameCount, 5U);
  EXPECT_EQ(recording.recordCount(), 1U);
  EXPECT_THAT(recording.statusFile().value_or(""), testing::StartsWith("Packed stream is incomp"));
}

TEST_F(WrittenByLibrary, RecordingIsReadWhileItIsWritten) {
  const Form form{4, 2, 8};
  handle = vxCreatePackStreamer(name, configurationOf(form, 5));
  add(form, 0);
  add(form, 1);
  EXPECT_EQ(Recording(name).recordCount(), 2U);
}

#ifndef _WIN32
TEST_F(WrittenByLibrary, BareNameIsFoundWhereTheLibraryPutIt) {
  const Form form{4, 2, 8};
  handle = vxCreatePackStreamer("bare.kpf", configurationOf(form, 1));
  add(form, 0);
  vxClosePackStreamer(handle);
  EXPECT_EQ(Recording("bare.kpf").recordCount(), 1U);
  EXPECT_EQ(Recording("./bare.kpf").recordCount(), 1U);
}
#endif

}  // namespace

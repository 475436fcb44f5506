// From the caller's samples to stored bytes, and back.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <random>
#include <utility>
#include <vector>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::readBytes;
using Samples = std::vector<std::uint16_t>;

class Packing : public TEST_CAPI::CFront {
 protected:
  static kpf_writer_options options12(std::uint32_t width, std::uint32_t height,
                                      std::uint32_t form) {
    kpf_writer_options options = smallOptions();
    options.width = width;
    options.height = height;
    options.bits = 12;
    options.samples = form;
    return options;
  }

  /// The stored pixels of a recording of one image.
  Bytes stored(const kpf_writer_options& options, const void* pixels, std::size_t stride = 0) {
    kpf_writer* const writer = begin(options);
    EXPECT_OK(kpf_writer_add_image(writer, pixels, stride, nullptr));
    EXPECT_OK(kpf_writer_close(writer, nullptr));
    const Bytes record = readBytes(data);
    return {record.begin() + 16, record.end()};
  }
};

TEST_F(Packing, ValuesAndLeftJustifiedSamplesGiveTheSameBytes) {
  const Bytes expected = {0xAB, 0x3C, 0x12, 0x00, 0xF1, 0xFF};
  const Samples values = {0xABC, 0x123, 0x001, 0xFFF};
  EXPECT_EQ(stored(options12(2, 2, KPF_SAMPLES_VALUE), values.data()), expected);
  std::filesystem::remove_all(folder / "clip");
  std::filesystem::remove(name);
  const Samples left = {0xABC0, 0x1235, 0x001F, 0xFFF0};  // what lies below the 12 bits is noise
  EXPECT_EQ(stored(options12(2, 2, KPF_SAMPLES_LEFT), left.data()), expected);
}

TEST_F(Packing, PackedFrameOfACameraIsStoredAsItIs) {
  const Bytes packed = {0xAB, 0x3C, 0x12, 0x00, 0xF1, 0xFF};
  kpf_writer* const writer = begin(options12(2, 2, KPF_SAMPLES_VALUE));
  EXPECT_OK(kpf_writer_add_packed(writer, packed.data(), 6, nullptr));
  EXPECT_EQ(kpf_writer_add_packed(writer, packed.data(), 7, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  kpf_reader* const reader = open();
  Samples samples(4);
  EXPECT_OK(kpf_reader_unpack(reader, 0, samples.data(), 4, KPF_SAMPLES_VALUE));
  EXPECT_EQ(samples, (Samples{0xABC, 0x123, 0x001, 0xFFF}));
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Packing, OddWidthLosesItsLastColumn) {
  const Samples values = {0x111, 0x222, 0x333, 0x444, 0x555, 0x666, 0x777, 0x888, 0x999};
  const Bytes expected = {0x11, 0x21, 0x22, 0, 0x44, 0x54, 0x55, 0, 0, 0x77, 0x87, 0x88, 0};
  EXPECT_EQ(stored(options12(3, 3, KPF_SAMPLES_VALUE), values.data()), expected);
}

TEST_F(Packing, ImageNeedsNoAlignmentAndMayHaveGaps) {
  const Bytes bytes = {0, 0xBC, 0x0A, 0x23, 0x01, 0xEE, 0x01, 0x00, 0xFF, 0x0F};
  const Bytes expected = {0xAB, 0x3C, 0x12, 0x00, 0xF1, 0xFF};
  EXPECT_EQ(stored(options12(2, 2, KPF_SAMPLES_VALUE), bytes.data() + 1, 5), expected);
}

TEST_F(Packing, SampleAbove4095IsRefusedAndTakesNoPlace) {
  Samples values(300 * 300, 4095);
  kpf_writer* const writer = begin(options12(300, 300, KPF_SAMPLES_VALUE));
  EXPECT_OK(kpf_writer_add_image(writer, values.data(), 0, nullptr));
  values[299 * 300 + 298] = 4096;
  EXPECT_EQ(kpf_writer_add_image(writer, values.data(), 0, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(counts(writer).added, 1U);
  EXPECT_EQ(counts(writer).refused, 1U);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
}

// Sizes on both sides of the runs that are worked on at once, odd ones among them.
TEST_F(Packing, WhatIsWrittenIsRead) {
  std::mt19937 random(14);
  for (const auto& [width, height] : {std::pair{1U, 1U},
                                      {1U, 5U},
                                      {2U, 1U},
                                      {7U, 6U},
                                      {2050U, 3U},
                                      {4099U, 5U},
                                      {320U, 241U},
                                      {301U, 333U}}) {
    Samples values(std::size_t{width} * height);
    for (auto& value : values) value = static_cast<std::uint16_t>(random() & 0xFFF);
    kpf_writer_options options = options12(width, height, KPF_SAMPLES_VALUE);
    options.replace = 1;
    stored(options, values.data());
    if (width % 2 != 0) {
      for (std::size_t i = width - 1; i < values.size(); i += width) values[i] = 0;
    }
    kpf_reader* const reader = open();
    Samples samples(values.size(), 0xDEAD);
    EXPECT_OK(kpf_reader_unpack(reader, 0, samples.data(), samples.size(), KPF_SAMPLES_VALUE));
    EXPECT_EQ(samples, values) << width << " x " << height;
    EXPECT_OK(kpf_reader_unpack(reader, 0, samples.data(), samples.size(), KPF_SAMPLES_LEFT));
    for (auto& value : values) value = static_cast<std::uint16_t>(value << 4);
    EXPECT_EQ(samples, values) << width << " x " << height;
    EXPECT_OK(kpf_reader_close(reader));
  }
}

TEST_F(Packing, EightBitSamplesAreUnpackedInBothForms) {
  const Bytes packed = {0, 1, 255};
  Samples samples(3);
  EXPECT_OK(kpf_unpack(3, 1, 8, packed.data(), 3, samples.data(), 3, KPF_SAMPLES_VALUE));
  EXPECT_EQ(samples, (Samples{0, 1, 255}));
  EXPECT_OK(kpf_unpack(3, 1, 8, packed.data(), 3, samples.data(), 3, KPF_SAMPLES_LEFT));
  EXPECT_EQ(samples, (Samples{0, 0x100, 0xFF00}));
}

TEST_F(Packing, UnpackingRefusesBuffersThatDoNotFit) {
  const Bytes packed(6);
  Samples samples(4, 7);
  const auto unpack = [&](std::uint32_t width, std::uint32_t height, std::uint32_t bits,
                          std::size_t size, std::size_t count, std::uint32_t form) {
    return kpf_unpack(width, height, bits, packed.data(), size, samples.data(), count, form);
  };
  EXPECT_EQ(unpack(2, 2, 12, 5, 4, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(unpack(2, 2, 12, 6, 3, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(unpack(2, 2, 10, 6, 4, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(unpack(0, 2, 12, 0, 4, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(unpack(65536, 65535, 12, 6, 4, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(unpack(2, 2, 12, 6, 4, 2), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_unpack(2, 2, 12, nullptr, 6, samples.data(), 4, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_unpack(2, 2, 12, packed.data(), 6, nullptr, 4, 0), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(samples, Samples(4, 7));
}

}  // namespace

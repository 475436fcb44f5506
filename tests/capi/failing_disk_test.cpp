// Frames that do not reach the disk: told by the very call, counted, and the rest stays in place.
#include "tests/capi/c_front_test.h"

#ifndef _WIN32
#include <cstdint>
#include <filesystem>

#include "tests/support/file_size_limit.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::FileSizeLimit;
using TEST_SUPPORT::readBytes;

class FailingDisk : public TEST_CAPI::CFront {};

TEST_F(FailingDisk, ExactlyTheFrameThatFailedIsTold) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  {
    const FileSizeLimit limit(24 + 20);  // the second record tears behind its header
    EXPECT_EQ(kpf_writer_add_image(writer, image.data(), 0, nullptr), KPF_ERROR_WRITE);
  }
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("clip.kpf: frame 1 could not be written"));
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_EQ(counts(writer).added, 3U);
  EXPECT_EQ(counts(writer).failed, 1U);
  EXPECT_EQ(counts(writer).refused, 0U);
  EXPECT_EQ(kpf_writer_close(writer, nullptr), KPF_ERROR_WRITE);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("1 frames could not be written"));

  kpf_reader* const reader = open();
  EXPECT_EQ(describe(reader).frame_count, 3U);
  for (const std::uint32_t n : {0U, 1U, 2U}) {
    kpf_frame frame = KPF_FRAME_INIT;
    EXPECT_OK(kpf_reader_frame(reader, n, &frame));
    EXPECT_EQ(frame.lost, n == 1 ? 1U : 0U);
  }
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(FailingDisk, LostFrameThatFailsCountsAsFailed) {
  kpf_writer* const writer = begin(smallOptions());
  {
    const FileSizeLimit limit(8);
    EXPECT_EQ(kpf_writer_add_lost(writer), KPF_ERROR_WRITE);
  }
  EXPECT_EQ(counts(writer).lost, 0U);
  EXPECT_EQ(counts(writer).failed, 1U);
  EXPECT_EQ(kpf_writer_close(writer, nullptr), KPF_ERROR_WRITE);
}

TEST_F(FailingDisk, HeaderThatCannotBeWrittenLeavesNothing) {
  const FileSizeLimit limit(1000);
  const kpf_writer_options options = smallOptions();
  kpf_writer* writer = nullptr;
  EXPECT_EQ(kpf_writer_create(name.c_str(), &options, &writer), KPF_ERROR_WRITE);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(FailingDisk, TrueCountThatCannotBeSetIsTold) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  std::filesystem::remove(name);
  EXPECT_EQ(kpf_writer_close(writer, nullptr), KPF_ERROR_WRITE);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("true frame count"));
  EXPECT_EQ(readBytes(data).size(), 24U);
}

TEST_F(FailingDisk, FolderInTheDataFilesPlaceRefusesTheFrame) {
  kpf_writer* const writer = begin(smallOptions());
  std::filesystem::create_directories(data);
  EXPECT_EQ(kpf_writer_add_image(writer, image.data(), 0, nullptr), KPF_ERROR_OPEN);
  EXPECT_EQ(kpf_writer_add_lost(writer), KPF_ERROR_OPEN);
  EXPECT_EQ(counts(writer).added, 0U);
  EXPECT_EQ(counts(writer).refused, 2U);
  EXPECT_OK(kpf_writer_close(writer, nullptr)) << "none was added, and none is missing";
}

TEST_F(FailingDisk, DurabilityThatCannotBeHadIsTold) {
  kpf_writer_options options = smallOptions();
  options.durable = 1;
  options.frame_count = 1;
  kpf_writer* const writer = begin(options);
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  std::filesystem::remove(name);
  EXPECT_EQ(kpf_writer_close(writer, nullptr), KPF_ERROR_WRITE);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("brought to disk"));
}

}  // namespace
#endif

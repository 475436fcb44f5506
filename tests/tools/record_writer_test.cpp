#include "tools/kpf/recording/record_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tests/support/files.h"
#include "tests/tools/five_frames_test.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

const std::vector<unsigned char> kRecord(16 + 8, 0x55);  // of 4 x 2 pixels at 8 bits

/// Writes the like of the five frames.
class RecordWriterTest : public FiveFramesTest {
 protected:
  const std::string new_ = folder_ / "new.kpf";
  const std::string data_ = folder_ / "new/new_0001.div";
};

TEST_F(RecordWriterTest, WritesWhatCanBeReadBack) {
  const KPF_READER::Recording like(header_);
  RecordWriter writer(new_, like);
  writer.add(kRecord);
  writer.add(kRecord);
  writer.finish();
  EXPECT_EQ(KPF_READER::Recording(new_).recordCount(), 2U);
  EXPECT_EQ(KPF_READER::Recording(new_).header().frameCount, 2U);
}

TEST_F(RecordWriterTest, WithoutAnEndNothingIsLeft) {
  const KPF_READER::Recording like(header_);
  RecordWriter(new_, like).add(kRecord);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "new"));
  EXPECT_FALSE(std::filesystem::exists(new_));
}

TEST_F(RecordWriterTest, WhatCameThereMeanwhileIsLeftAlone) {
  const KPF_READER::Recording like(header_);
  {
    RecordWriter writer(new_, like);
    TEST_SUPPORT::writeText(data_, "somebody's");
    try {
      writer.add(kRecord);
      ADD_FAILURE() << "it was overwritten";
    } catch (const ToolError& error) {
      EXPECT_EQ(error.outcome(), Outcome::kWriteFailed);
      EXPECT_THAT(error.what(), testing::HasSubstr("new_0001.div: File exists"));
    }
  }
  EXPECT_EQ(TEST_SUPPORT::readText(data_), "somebody's");
}

}  // namespace

// Nothing is overwritten unasked, and only recordings when asked.
#include <filesystem>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::entriesBelow;
using TEST_SUPPORT::readBytes;
using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;
using testing::ElementsAre;

class Replacing : public TEST_CAPI::CFront {
 protected:
  void record(int frames) {
    kpf_writer_options options = smallOptions();
    options.replace = 1;
    kpf_writer* const writer = begin(options);
    for (int i = 0; i < frames; ++i) EXPECT_OK(kpf_writer_add_lost(writer));
    EXPECT_OK(kpf_writer_close(writer, nullptr));
  }

  kpf_result create(bool replace) {
    kpf_writer_options options = smallOptions();
    options.replace = replace ? 1 : 0;
    kpf_writer* writer = nullptr;
    const kpf_result result = kpf_writer_create(name.c_str(), &options, &writer);
    if (result == KPF_OK) kpf_writer_close(writer, nullptr);
    return result;
  }
};

TEST_F(Replacing, RecordingIsNotOverwrittenUnasked) {
  record(2);
  const auto header = readBytes(name);
  EXPECT_EQ(create(false), KPF_ERROR_EXISTS);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("clip.kpf: already there"));
  EXPECT_EQ(readBytes(name), header);
  EXPECT_EQ(readBytes(data).size(), 48U);
}

TEST_F(Replacing, DataFilesWithoutAHeaderAreNotOverwrittenUnasked) {
  record(2);
  std::filesystem::remove(name);
  EXPECT_EQ(create(false), KPF_ERROR_EXISTS);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("clip_0001.div"));
  EXPECT_EQ(readBytes(data).size(), 48U);
}

TEST_F(Replacing, NothingOfTheOldRecordingStays) {
  record(2);
  writeText(folder / "clip/clip_0007.div", "of a longer one");
  writeText(folder / "clip/notes.txt", "mine");
  writeText(name + ".incomplete.txt", "of an older one");
  record(0);
  EXPECT_THAT(entriesBelow(folder.path()), ElementsAre("clip", "clip.kpf", "clip/notes.txt"));
}

TEST_F(Replacing, StaleStatusFileGoes) {
  writeText(name + ".incomplete.txt", "of an older one");
  EXPECT_EQ(create(false), KPF_OK);
  EXPECT_FALSE(std::filesystem::exists(name + ".incomplete.txt"));
}

TEST_F(Replacing, WhatIsNoRecordingStaysEvenWhenAsked) {
  writeText(name, "a letter to a friend");
  EXPECT_EQ(create(true), KPF_ERROR_EXISTS);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("no recording"));
  EXPECT_EQ(readText(name), "a letter to a friend");
}

TEST_F(Replacing, FolderOfThatNameStays) {
  std::filesystem::create_directories(name);
  EXPECT_EQ(create(false), KPF_ERROR_EXISTS);
  EXPECT_EQ(create(true), KPF_ERROR_EXISTS);
  EXPECT_TRUE(std::filesystem::is_directory(name));
}

}  // namespace

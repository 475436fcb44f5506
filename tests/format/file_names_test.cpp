#include "format/kpf_file_names.h"

#include <gtest/gtest.h>

#include "format/kpf_status.h"

namespace {

using KPF_FORMAT::DataNames;
using KPF_FORMAT::dataNames;
using KPF_FORMAT::divFileName;
using KPF_FORMAT::divFileNumber;
using KPF_FORMAT::divFilePrefix;
using KPF_FORMAT::withoutExtension;

struct Case {
  const char* header;
  const char* folder;
  const char* base;
};

// Text alone decides, on every system alike.
constexpr Case kCases[] = {
    {"D:/rec/clip.kpf", "D:/rec/clip/", "clip"},
    {"clip.kpf", "clip\\", "clip"},
    {"./clip.kpf", "./clip/", "clip"},
    {"/clip.kpf", "/clip/", "clip"},
    {"C:\\rec\\clip.kpf", "C:\\rec\\clip\\", "clip"},
    {"rec/a\\clip.kpf", "rec/a\\clip/", "a\\clip"},
    {"a\\b/clip.kpf", "a\\b/clip/", "clip"},
    {"clip.v2.kpf", "clip.v2\\", "clip.v2"},
    {"clip.", "clip\\", "clip"},
    {"D:/rec.old/clip", "D:/rec/", "rec"},
    {"clip.d/x", "clip\\", "clip"},
    {"clip.d\\x", "clip\\", "clip"},
    {"rec/.kpf", "rec/", ""},
    {"rec\\.kpf", "rec\\", ""},
    {"/.kpf", "/", ""},
    {"..kpf", ".\\", "."},
    {".kpf", "\\", ""},
    {"100%s%n.kpf", "100%s%n\\", "100%s%n"},
    {"r\xc3\xa4um \x80.kpf", "r\xc3\xa4um \x80\\", "r\xc3\xa4um \x80"},
};

TEST(FileNames, FolderAndBaseFollowFromTheHeadersName) {
  for (const auto& [header, folder, base] : kCases) {
    const auto stem = withoutExtension(header);
    ASSERT_TRUE(stem) << header;
    const DataNames names = dataNames(*stem);
    EXPECT_EQ(names.folder, folder) << header;
    EXPECT_EQ(names.base, base) << header;
  }
}

TEST(FileNames, NameWithoutADotHasNoFolder) {
  EXPECT_FALSE(withoutExtension(""));
  EXPECT_FALSE(withoutExtension("clip"));
  EXPECT_FALSE(withoutExtension("a/b\\clip"));
  EXPECT_EQ(withoutExtension(".kpf"), "");
}

TEST(FileNames, NumberHasFourDigitsOrMore) {
  const DataNames names{"D:/rec/clip/", "clip"};
  EXPECT_EQ(divFileName(names, 1), "D:/rec/clip/clip_0001.div");
  EXPECT_EQ(divFileName(names, 999), "D:/rec/clip/clip_0999.div");
  EXPECT_EQ(divFileName(names, 10000), "D:/rec/clip/clip_10000.div");
  EXPECT_EQ(divFileName(names, 4294967295), "D:/rec/clip/clip_4294967295.div");
}

TEST(FileNames, PerCentSignsAreJustCharacters) {
  EXPECT_EQ(divFileName({"%s\\", "%n%d"}, 7), "%s\\%n%d_0007.div");
}

TEST(FileNames, NumberIsReadBackFromAName) {
  const DataNames names{"a/clip_1/", "clip_1"};
  EXPECT_EQ(divFileNumber(names, "a/clip_1/clip_1_0001.div"), 1U);
  EXPECT_EQ(divFileNumber(names, "a/clip_1/clip_1_12345.div"), 12345U);
  EXPECT_EQ(divFileNumber(names, "a/clip_1/clip_1_4294967295.div"), 4294967295U);
}

TEST(FileNames, OtherSpellingsAreNotDataFiles) {
  for (const char* name :
       {"clip_0000.div", "clip_2.div", "clip_00002.div", "clip_0002.DIV", "clip_0002.div~",
        "clip_-002.div", "clip_+002.div", "clip_ 002.div", "clip_0002", "clip_.div", "clip_",
        "clip", "", "clip_99999999999.div", "clip_4294967297.div", "CLIP_0002.div",
        "other_0002.div", "clips_0002.div", "xclip_0002.div"}) {
    EXPECT_EQ(divFileNumber({"", "clip"}, name), 0U) << name;
  }
}

TEST(FileNames, PrefixIsWhatTheDataFilesBeginWith) {
  EXPECT_EQ(divFilePrefix("a_b/clip_1/clip_1_0001.div"), "a_b/clip_1/clip_1_");
  EXPECT_EQ(divFilePrefix("clip\\clip_12345.div"), "clip\\clip_");
}

TEST(StatusFile, LiesBesideTheHeaderFile) {
  EXPECT_EQ(KPF_FORMAT::statusFileName("D:/rec/clip.kpf"), "D:/rec/clip.kpf.incomplete.txt");
  EXPECT_EQ(KPF_FORMAT::statusFileName(""), ".incomplete.txt");
}

TEST(StatusFile, HasThreeLines) {
  EXPECT_EQ(KPF_FORMAT::kStatusText,
            "Packed stream is incomplete and was not fully processed.\n"
            "Please review log data for possible error conditions.\n"
            "Status:\n");
}

}  // namespace

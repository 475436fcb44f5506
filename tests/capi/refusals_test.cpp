// What a caller gets wrong: told clearly, and nothing is lost.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::entriesBelow;
using TEST_SUPPORT::readText;
using TEST_SUPPORT::writeText;
using testing::HasSubstr;
using testing::IsEmpty;

class Refusals : public TEST_CAPI::CFront {
 protected:
  kpf_result create(const char* under, const kpf_writer_options& options) {
    kpf_writer* writer = untouched;
    const kpf_result result = kpf_writer_create(under, &options, &writer);
    EXPECT_EQ(writer, untouched) << "an output of a failed call";
    return result;
  }

  int mark = 0;
  kpf_writer* const untouched = reinterpret_cast<kpf_writer*>(&mark);
};

TEST_F(Refusals, OptionsOutOfTheirRange) {
  const std::string text152(152, 'x');
  const std::function<void(kpf_writer_options&)> mistakes[] = {
      [](auto& o) { o.width = 0; },
      [](auto& o) { o.width = 65536; },
      [](auto& o) { o.height = 0; },
      [](auto& o) { o.width = 65535, o.height = 65535; },
      [](auto& o) { o.bits = 10; },
      [](auto& o) { o.bits = 0; },
      [](auto& o) { o.frame_rate = 0; },
      [](auto& o) { o.frame_rate = 0x80000000; },
      [](auto& o) { o.frame_count = KPF_FRAMES_UNKNOWN; },
      [](auto& o) { o.start_seconds = -1; },
      [](auto& o) { o.start_microseconds = 1000000; },
      [](auto& o) { o.samples = 2; },
      [](auto& o) { o.replace = 2; },
      [](auto& o) { o.durable = 2; },
      [](auto& o) { o.value5 = 3; },
      [](auto& o) { o.reserved = 1; },
      [&](auto& o) { o.text5 = text152.c_str(); },
      [&](auto& o) { o.text2 = text152.c_str(); },
  };
  int n = 0;
  for (const auto& mistake : mistakes) {
    kpf_writer_options options = smallOptions();
    mistake(options);
    EXPECT_EQ(create(name.c_str(), options), KPF_ERROR_ARGUMENT) << "mistake " << n;
    EXPECT_THAT(kpf_error_text(), HasSubstr("kpf_writer_create: "));
    ++n;
  }
  EXPECT_THAT(entriesBelow(folder.path()), IsEmpty());
}

TEST_F(Refusals, NamesThatNameNoRecording) {
  const kpf_writer_options options = smallOptions();
  EXPECT_EQ(create("", options), KPF_ERROR_NAME);
  EXPECT_EQ(create((folder / "clip").c_str(), options), KPF_ERROR_NAME);
  EXPECT_EQ(create((folder / "a.b/clip").c_str(), options), KPF_ERROR_NAME);
  EXPECT_EQ(create((folder / ".kpf").c_str(), options), KPF_ERROR_NAME);
  EXPECT_EQ(create(nullptr, options), KPF_ERROR_ARGUMENT);
  EXPECT_THAT(entriesBelow(folder.path()), IsEmpty());
}

TEST_F(Refusals, FolderThatIsNotThere) {
  EXPECT_EQ(create((folder / "none/clip.kpf").c_str(), smallOptions()), KPF_ERROR_OPEN);
  EXPECT_THAT(kpf_error_text(), HasSubstr("none/clip.kpf"));
  EXPECT_THAT(entriesBelow(folder.path()), IsEmpty());
}

TEST_F(Refusals, DataFolderThatCannotBeMadeTakesTheHeaderBack) {
  writeText(folder / "clip", "a file in the folder's place");
  EXPECT_EQ(create(name.c_str(), smallOptions()), KPF_ERROR_OPEN);
  EXPECT_THAT(kpf_error_text(), HasSubstr("is a file of its name there?"));
  EXPECT_FALSE(std::filesystem::exists(name));
  EXPECT_EQ(readText(folder / "clip"), "a file in the folder's place");
}

TEST_F(Refusals, NullsAreTold) {
  const kpf_writer_options options = smallOptions();
  kpf_writer* writer = nullptr;
  kpf_reader* reader = nullptr;
  EXPECT_EQ(kpf_writer_create(name.c_str(), nullptr, &writer), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_writer_create(name.c_str(), &options, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_reader_open(nullptr, nullptr, &reader), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_reader_open(name.c_str(), nullptr, nullptr), KPF_ERROR_ARGUMENT);
  writer = begin(options);
  EXPECT_EQ(kpf_writer_add_image(writer, nullptr, 0, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_writer_add_packed(writer, nullptr, 8, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_writer_statistics(writer, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  reader = open();
  EXPECT_EQ(kpf_reader_describe(reader, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_reader_data_file(reader, 1, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Refusals, StridesAndStampsOutOfTheirRange) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_EQ(kpf_writer_add_image(writer, image.data(), 3, nullptr), KPF_ERROR_ARGUMENT);
  EXPECT_EQ(kpf_writer_add_image(writer, image.data(), SIZE_MAX, nullptr), KPF_ERROR_ARGUMENT);
  kpf_stamp stamp = KPF_STAMP_INIT;
  stamp.microseconds = 1000000;
  EXPECT_EQ(kpf_writer_add_image(writer, image.data(), 0, &stamp), KPF_ERROR_ARGUMENT);
  stamp.struct_size = 0;
  EXPECT_EQ(kpf_writer_add_image(writer, image.data(), 0, &stamp), KPF_ERROR_STRUCT);
  EXPECT_EQ(counts(writer).added, 0U);
  EXPECT_EQ(counts(writer).refused, 4U);
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
}

TEST_F(Refusals, ClosedHandlesAreToldEvenWhenOthersAreOpen) {
  kpf_writer* const closed = begin(smallOptions());
  EXPECT_OK(kpf_writer_close(closed, nullptr));
  kpf_writer_options options = smallOptions();
  options.replace = 1;
  kpf_writer* const other = begin(options);
  EXPECT_EQ(kpf_writer_add_image(closed, image.data(), 0, nullptr), KPF_ERROR_HANDLE);
  EXPECT_STREQ(kpf_error_text(), "kpf_writer_add_image: the handle was closed, or never issued");
  EXPECT_EQ(kpf_writer_close(closed, nullptr), KPF_ERROR_HANDLE);
  EXPECT_EQ(counts(other).added, 0U);
  EXPECT_OK(kpf_writer_close(other, nullptr));
}

TEST_F(Refusals, NullHandlesOfEveryKind) {
  kpf_frame frame = KPF_FRAME_INIT;
  std::uint32_t number = 0;
  EXPECT_EQ(kpf_writer_add_lost(nullptr), KPF_ERROR_HANDLE);
  EXPECT_EQ(kpf_writer_close(nullptr, nullptr), KPF_ERROR_HANDLE);
  EXPECT_EQ(kpf_reader_frame(nullptr, 0, &frame), KPF_ERROR_HANDLE);
  EXPECT_EQ(kpf_reader_refresh(nullptr), KPF_ERROR_HANDLE);
  EXPECT_EQ(kpf_reader_close(nullptr), KPF_ERROR_HANDLE);
  EXPECT_EQ(kpf_amplifier_available(nullptr, &number), KPF_ERROR_HANDLE);
  EXPECT_EQ(kpf_amplifier_destroy(nullptr), KPF_ERROR_HANDLE);
  EXPECT_STREQ(kpf_error_text(), "kpf_amplifier_destroy: the handle is null");
}

TEST_F(Refusals, HandleOfAnotherKindIsNone) {
  kpf_writer* const writer = begin(smallOptions());
  EXPECT_EQ(kpf_reader_close(reinterpret_cast<kpf_reader*>(writer)), KPF_ERROR_HANDLE);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
}

TEST_F(Refusals, ErrorTextIsTheThreadsOwn) {
  EXPECT_EQ(kpf_reader_close(nullptr), KPF_ERROR_HANDLE);
  EXPECT_EQ(create("", smallOptions()), KPF_ERROR_NAME);
  EXPECT_STREQ(kpf_error_text(), "kpf_writer_create: \"\": the name is empty");
}

TEST_F(Refusals, LongErrorTextIsCutAtACharacter) {
  std::string long_name = folder / "";
  for (int i = 0; i < 3000; ++i) long_name += "\u00e9";
  EXPECT_EQ(create((long_name + "/clip.kpf").c_str(), smallOptions()), KPF_ERROR_OPEN);
  const std::string text = kpf_error_text();
  EXPECT_LT(text.size(), 2048U);
  EXPECT_THAT(text.substr(text.size() - 2), "\u00e9");
}

}  // namespace

// Structures of callers that were compiled with another kpf.h.
#include <cstdint>
#include <cstring>
#include <string>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::Bytes;

template <class Struct>
Bytes bytesOf(const Struct& structure) {
  Bytes bytes(sizeof structure);
  std::memcpy(bytes.data(), &structure, sizeof structure);
  return bytes;
}

/// Calls with `structure` as it came to this function must be answered with KPF_ERROR_ARGUMENT or
/// another plain result; with a size that is none, always with KPF_ERROR_STRUCT.
template <class Struct, class Call>
void expectSizesHeld(const char* name, Struct structure, Call call) {
  SCOPED_TRACE(name);
  const Bytes macro = bytesOf(structure);
  Bytes made(sizeof(Struct), 0xEE);
  EXPECT_OK(kpf_struct_init(made.data(), sizeof(Struct)));
  EXPECT_EQ(made, macro) << "the macro and kpf_struct_init differ";
  ASSERT_EQ(sizeof(Struct) % 8, 0U);
  for (const std::uint32_t size : {0U, 1U, 7U, 9U, 4104U, 0xFFFFFFFFU}) {
    structure.struct_size = size;
    EXPECT_EQ(call(&structure), KPF_ERROR_STRUCT) << size;
    EXPECT_EQ(kpf_struct_init(made.data(), size), KPF_ERROR_STRUCT) << size;
  }
  for (std::uint32_t size = 8; size <= sizeof(Struct); size += 8) {
    structure = Struct{};
    structure.struct_size = size;
    EXPECT_NE(call(&structure), KPF_ERROR_STRUCT) << size;
  }
}

/// A structure of a later version: `extra` stands behind what this one knows.
template <class Struct>
struct Newer {
  Struct known;
  std::uint64_t extra;
};

class Structs : public TEST_CAPI::CFront {};

TEST_F(Structs, EveryStructureIsTakenByItsSize) {
  kpf_writer_options replacing = smallOptions();
  replacing.replace = 1;
  kpf_writer* const writer = begin(replacing);
  EXPECT_OK(kpf_writer_add_image(writer, image.data(), 0, nullptr));
  kpf_reader* const reader = open();
  const std::string other = folder / "other.kpf";

  expectSizesHeld("kpf_writer_options", kpf_writer_options KPF_WRITER_OPTIONS_INIT, [&](auto* s) {
    kpf_writer* made = nullptr;
    return kpf_writer_create(other.c_str(), s, &made);
  });
  expectSizesHeld("kpf_stamp", kpf_stamp KPF_STAMP_INIT,
                  [&](auto* s) { return kpf_writer_add_image(writer, image.data(), 0, s); });
  expectSizesHeld("kpf_writer_counts", kpf_writer_counts KPF_WRITER_COUNTS_INIT,
                  [&](auto* s) { return kpf_writer_statistics(writer, s); });
  expectSizesHeld("kpf_reader_options", kpf_reader_options KPF_READER_OPTIONS_INIT, [&](auto* s) {
    kpf_reader* made = nullptr;
    const kpf_result result = kpf_reader_open(name.c_str(), s, &made);
    kpf_reader_close(made);
    return result;
  });
  expectSizesHeld("kpf_recording_info", kpf_recording_info KPF_RECORDING_INFO_INIT,
                  [&](auto* s) { return kpf_reader_describe(reader, s); });
  expectSizesHeld("kpf_frame", kpf_frame KPF_FRAME_INIT,
                  [&](auto* s) { return kpf_reader_frame(reader, 0, s); });
  expectSizesHeld("kpf_amplifier_options", kpf_amplifier_options KPF_AMPLIFIER_OPTIONS_INIT,
                  [&](auto* s) {
                    kpf_amplifier* made = nullptr;
                    return kpf_amplifier_create(s, &made);
                  });
  EXPECT_OK(kpf_reader_close(reader));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
}

// A version before the texts and values, say.
TEST_F(Structs, OlderOptionsAreTakenAsIfZerosFollowed) {
  kpf_writer_options options = smallOptions();
  const std::string garbage = "behind the older structure";
  options.text5 = garbage.c_str();
  options.value5 = 77;
  options.struct_size = offsetof(kpf_writer_options, text5);
  kpf_writer* const writer = begin(options);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  kpf_reader* const reader = open();
  EXPECT_STREQ(describe(reader).text5, "");
  EXPECT_EQ(describe(reader).value5, 0U);
  EXPECT_OK(kpf_reader_close(reader));
}

TEST_F(Structs, OlderCallersMemoryIsNotWrittenPast) {
  kpf_writer* const writer = begin(smallOptions());
  kpf_writer_counts counts = KPF_WRITER_COUNTS_INIT;
  counts.struct_size = 16;
  counts.failed = 0xAAAAAAAA;
  EXPECT_OK(kpf_writer_add_lost(writer));
  EXPECT_OK(kpf_writer_close(writer, &counts));
  EXPECT_EQ(counts.struct_size, 16U);
  EXPECT_EQ(counts.added, 1U);
  EXPECT_EQ(counts.failed, 0xAAAAAAAA);
}

TEST_F(Structs, NewerOptionsAreTakenWhenTheirNewMembersAreZero) {
  Newer<kpf_writer_options> options{smallOptions(), 0};
  options.known.struct_size = sizeof options;
  kpf_writer* writer = begin(options.known);
  EXPECT_OK(kpf_writer_close(writer, nullptr));
  options.extra = 1;
  options.known.replace = 1;
  EXPECT_EQ(kpf_writer_create(name.c_str(), &options.known, &writer), KPF_ERROR_STRUCT);
  EXPECT_THAT(kpf_error_text(), testing::HasSubstr("does not know"));
}

TEST_F(Structs, NewMembersOfAnOutputBecomeZero) {
  kpf_writer* const writer = begin(smallOptions());
  Newer<kpf_writer_counts> counts{KPF_WRITER_COUNTS_INIT, 99};
  counts.known.struct_size = sizeof counts;
  EXPECT_OK(kpf_writer_close(writer, &counts.known));
  EXPECT_EQ(counts.extra, 0U);
}

TEST_F(Structs, WrongSizeOfTheCountsDoesNotEndTheWriter) {
  kpf_writer* const writer = begin(smallOptions());
  kpf_writer_counts counts{};
  EXPECT_EQ(kpf_writer_close(writer, &counts), KPF_ERROR_STRUCT);
  EXPECT_OK(kpf_writer_add_lost(writer));
  EXPECT_OK(kpf_writer_close(writer, nullptr));
}

}  // namespace

// The library's words, and where they go.
#include <cstdint>
#include <string>
#include <vector>

#include "tests/capi/c_front_test.h"

namespace {

using testing::ElementsAre;

class Log : public TEST_CAPI::CFront {
 protected:
  static void keep(std::int32_t level, const char* line, void* lines) {
    static_cast<std::vector<std::string>*>(lines)->push_back(std::to_string(level) + " " + line);
  }

  /// Something that has to be told: a recording closed too early.
  void recordTooLittle() {
    kpf_writer_options options = smallOptions();
    options.frame_count = 2;
    options.replace = 1;
    EXPECT_EQ(kpf_writer_close(begin(options), nullptr), KPF_ERROR_INCOMPLETE);
  }

  std::vector<std::string> lines;
};

TEST_F(Log, LinesGoToTheCallbackWithItsPayload) {
  kpf_set_log(keep, &lines);
  recordTooLittle();
  EXPECT_THAT(lines, ElementsAre("3 closeStream: KPF Packed streamStatus is not marked complete.  "
                                 "Writing " +
                                 name +
                                 ".incomplete.txt to document incomplete "
                                 "status."));
}

TEST_F(Log, UnsetCallbackIsNotCalled) {
  kpf_set_log(keep, &lines);
  kpf_set_log(nullptr, &lines);
  recordTooLittle();
  EXPECT_THAT(lines, testing::IsEmpty());
}

TEST_F(Log, VersionIsThatOfTheHeader) {
  const std::string version = kpf_version();
  const std::string expected =
      std::to_string(KPF_VERSION_MAJOR) + "." + std::to_string(KPF_VERSION_MINOR) + ".";
  EXPECT_EQ(version.substr(0, expected.size()), expected);
}

TEST_F(Log, ResultsHaveNames) {
  EXPECT_STREQ(kpf_result_name(KPF_OK), "KPF_OK");
  EXPECT_STREQ(kpf_result_name(KPF_ERROR_FULL), "KPF_ERROR_FULL");
  EXPECT_STREQ(kpf_result_name(KPF_ERROR_INTERNAL), "KPF_ERROR_INTERNAL");
  EXPECT_STREQ(kpf_result_name(16), "unknown");
  EXPECT_STREQ(kpf_result_name(-1), "unknown");
}

}  // namespace

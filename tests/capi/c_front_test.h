// What the cases of the C front share: they see the library as its callers do, through kpf.h alone.
#ifndef TESTS_CAPI_C_FRONT_TEST_H
#define TESTS_CAPI_C_FRONT_TEST_H

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "capi/kpf.h"
#include "tests/support/files.h"

namespace TEST_CAPI {

using TEST_SUPPORT::Bytes;

/// GoogleTest shows results by name, and with the library's own words.
#define EXPECT_OK(call) EXPECT_EQ(call, KPF_OK) << kpf_error_text()
#define ASSERT_OK(call) ASSERT_EQ(call, KPF_OK) << kpf_error_text()

/// Every case has a folder of its own, and a recording in it that it may make.
class CFront : public testing::Test {
 protected:
  CFront();
  ~CFront() override;

  /// 4 x 2 pixels at 8 bits, 10 frames/s, from second 1000 on, no count announced.
  static kpf_writer_options smallOptions();
  /// Begins `name`; null when that fails.
  kpf_writer* begin(const kpf_writer_options& options);
  kpf_reader* open() const;
  kpf_writer_counts counts(kpf_writer* of) const;
  static kpf_recording_info describe(kpf_reader* of);

  TEST_SUPPORT::TemporaryFolder folder;
  const std::string name = folder / "clip.kpf";
  const std::string data = folder / "clip/clip_0001.div";
  const Bytes image = {1, 2, 3, 4, 5, 6, 7, 8};
};

}  // namespace TEST_CAPI

#endif

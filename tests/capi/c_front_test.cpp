#include "tests/capi/c_front_test.h"

namespace TEST_CAPI {

CFront::CFront() = default;
CFront::~CFront() { kpf_set_log(nullptr, nullptr); }

kpf_writer_options CFront::smallOptions() {
  kpf_writer_options options = KPF_WRITER_OPTIONS_INIT;
  options.width = 4;
  options.height = 2;
  options.bits = 8;
  options.frame_rate = 10;
  options.start_seconds = 1000;
  return options;
}

kpf_writer* CFront::begin(const kpf_writer_options& options) {
  kpf_writer* writer = nullptr;
  EXPECT_OK(kpf_writer_create(name.c_str(), &options, &writer));
  return writer;
}

kpf_reader* CFront::open() const {
  kpf_reader* reader = nullptr;
  EXPECT_OK(kpf_reader_open(name.c_str(), nullptr, &reader));
  return reader;
}

kpf_writer_counts CFront::counts(kpf_writer* of) const {
  kpf_writer_counts counts = KPF_WRITER_COUNTS_INIT;
  EXPECT_OK(kpf_writer_statistics(of, &counts));
  return counts;
}

kpf_recording_info CFront::describe(kpf_reader* of) {
  kpf_recording_info info = KPF_RECORDING_INFO_INIT;
  EXPECT_OK(kpf_reader_describe(of, &info));
  return info;
}

}  // namespace TEST_CAPI

// Handles made, used and closed by several threads at once.
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "tests/capi/c_front_test.h"

namespace {

using TEST_SUPPORT::Bytes;

class Threads : public TEST_CAPI::CFront {};

/// Records ten frames under `name`, reads them back. @return frames that came back as they were.
int recordAndRead(const std::string& name, unsigned char fill) {
  kpf_writer_options options = KPF_WRITER_OPTIONS_INIT;
  options.width = 16, options.height = 16, options.bits = 8, options.frame_rate = 50;
  kpf_writer* writer = nullptr;
  if (kpf_writer_create(name.c_str(), &options, &writer) != KPF_OK) return -1;
  const Bytes pixels(256, fill);
  for (int i = 0; i < 10; ++i) kpf_writer_add_image(writer, pixels.data(), 0, nullptr);
  if (kpf_writer_close(writer, nullptr) != KPF_OK) return -2;
  kpf_reader* reader = nullptr;
  if (kpf_reader_open(name.c_str(), nullptr, &reader) != KPF_OK) return -3;
  int same = 0;
  for (std::uint32_t n = 0; n < 10; ++n) {
    kpf_frame frame = KPF_FRAME_INIT;
    if (kpf_reader_frame(reader, n, &frame) != KPF_OK || frame.lost != 0) continue;
    const auto* const first = static_cast<const unsigned char*>(frame.pixels);
    same += Bytes(first, first + 256) == pixels ? 1 : 0;
  }
  kpf_reader_close(reader);
  return same;
}

TEST_F(Threads, DifferentRecordingsDoNotDisturbEachOther) {
  std::vector<std::thread> threads;
  std::vector<int> same(4);
  for (std::size_t i = 0; i < same.size(); ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 5; ++round) {
        const std::string own = std::to_string(i) + "_" + std::to_string(round) + ".kpf";
        same[i] += recordAndRead(folder / own, static_cast<unsigned char>(i + 1));
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(same, testing::Each(50));
}

TEST_F(Threads, ErrorTextsDoNotMix) {
  EXPECT_EQ(kpf_reader_close(nullptr), KPF_ERROR_HANDLE);
  std::thread([] {
    EXPECT_STREQ(kpf_error_text(), "");
    EXPECT_EQ(kpf_writer_close(nullptr, nullptr), KPF_ERROR_HANDLE);
  }).join();
  EXPECT_STREQ(kpf_error_text(), "kpf_reader_close: the handle is null");
}

}  // namespace

// What may be done from several threads at once.
#include <barrier>
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/library_test.h"
#include "vlm_internal.h"
#include "vx_log.h"

namespace {

constexpr int kThreads = 6;

void onThreads(const std::function<void(int)>& work) {
  std::barrier begin(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      begin.arrive_and_wait();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

class Threads : public TEST_SUPPORT::LibraryTest {};

TEST_F(Threads, FindOneLoggerOnItsFirstUse) {
  for (int round = 0; round < 50; ++round) {
    VX_LOG::VxLogger::instance.reset();
    VX_LOG::VxLogger* found[kThreads] = {};
    onThreads([&](int i) {
      found[i] = VX_LOG::VxLogger::factory();
      found[i]->vx_log(7, "%s: %d", "thread", i);
    });
    EXPECT_EQ(std::set<VX_LOG::VxLogger*>(found, found + kThreads).size(), 1U);
  }
}

TEST_F(Threads, FeedStreamsOfTheirOwn) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 640;
  configuration.height = 100;
  configuration.bitsPerPixel = 12;
  configuration.frameRate = 1;
  configuration.frameCount = 40;
  for (int i = 0; i < kThreads; ++i) {
    vxCreatePackStreamer(folder / ("rec" + std::to_string(i) + ".kpf"), configuration);
  }
  onThreads([](int i) {
    const std::vector<unsigned char> image(2 * 640 * 100, static_cast<unsigned char>(0x11 * i));
    for (int n = 0; n < 20; ++n) {
      vxAddTiffImageData(static_cast<unsigned>(i + 1), image.data());
      vxAddPlaceholder(static_cast<unsigned>(i + 1));
    }
  });
  for (int i = 0; i < kThreads; ++i) {
    const std::string stem = "rec" + std::to_string(i);
    const auto bytes = TEST_SUPPORT::readBytes(folder.path() / stem / (stem + "_0001.div"));
    ASSERT_EQ(bytes.size(), 40U * (16 + 96000));
    EXPECT_EQ(bytes[38 * 96016 + 16 + 95999], 0x11 * i);
    EXPECT_EQ(vxClosePackStreamer(static_cast<unsigned>(i + 1)), 5);
  }
}

TEST_F(Threads, ConvertImagesSideBySide) {
  std::vector<std::vector<unsigned char>> out(kThreads);
  onThreads([&](int i) {
    const std::vector<unsigned char> image(2 * 64 * 64, static_cast<unsigned char>(0x11 * i));
    out[static_cast<std::size_t>(i)].resize(vxGetPackedSize(64, 64, 12));
    for (int n = 0; n < 50; ++n) {
      vxConvertTiffImageData(image.data(), out[static_cast<std::size_t>(i)].data(), 0, 64, 64, 12);
    }
  });
  for (int i = 0; i < kThreads; ++i) {
    EXPECT_EQ(out[static_cast<std::size_t>(i)].back(), 0x11 * i);
  }
}

}  // namespace

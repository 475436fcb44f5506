// What may be done from several threads at once.
#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <functional>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/library_test.h"
#include "vlm_internal.h"
#include "vx_log.h"

namespace {

constexpr int kThreads = 6;

/// Opens when the last of the threads stands before it. std::barrier of GCC 12 for Windows
/// sometimes leaves one of them waiting for ever.
class Gate {
 public:
  void pass() {
    std::unique_lock lock(mutex_);
    if (--missing_ == 0) opened_.notify_all();
    opened_.wait(lock, [this] { return missing_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  int missing_ = kThreads;
};

void onThreads(const std::function<void(int)>& work) {
  Gate begin;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      begin.pass();
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

/// Streams come, are fed and go, all on one thread: their table is its own.
void recordAgainAndAgain(const std::string& name) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = 64, configuration.height = 64, configuration.bitsPerPixel = 12;
  configuration.frameRate = 1, configuration.frameCount = 4;
  const std::vector<unsigned char> image(2 * 64 * 64, 0x22);
  for (int i = 0; i < 30; ++i) {
    const unsigned stream = vxCreatePackStreamer(name, configuration);
    for (int n = 0; n < 2; ++n) vxAddTiffImageData(stream, image.data());
    vxAddPlaceholder(stream);
    EXPECT_EQ(vxAddTiffImageData(stream, image.data()), 4);
    EXPECT_EQ(vxClosePackStreamer(stream), 5);
  }
}

/// All that may overlap on amplifiers which stay: W is 3, and every frame is of 60 or 90.
void useAmplifier(unsigned amplifier, int thread) {
  std::vector<unsigned char> out(64 * 64);
  for (int n = 0; n < 60; ++n) {
    auto* const frame = static_cast<unsigned char*>(::operator new(out.size()));
    std::memset(frame, n % 2 == 0 ? 60 : 90, out.size());
    EXPECT_EQ(vxMAAddFrame(amplifier, frame), 0);
    if (vxMAAvailable(amplifier)) {
      EXPECT_EQ(vxMAGetFrame(amplifier, out.data()), 0);
      EXPECT_GE(out.front(), 60);
      EXPECT_EQ(vxMAGetRefFrame(amplifier, out.data()), 0);
      EXPECT_LE(out.front(), 60);
    }
    vxMAUpdateAmpFactor(amplifier, thread);
    EXPECT_EQ(vxMAGetRefWindowSize(amplifier), 3);
  }
}

/// What touches no table, its failures and their lines included.
void convert(int thread) {
  const std::vector<unsigned char> image(2 * 64 * 64, static_cast<unsigned char>(0x11 * thread));
  std::vector<unsigned char> out(vxGetPackedSize(64, 64, 12));
  for (int n = 0; n < 60; ++n) {
    EXPECT_EQ(vxConvertTiffImageData(image.data(), out.data(), 0, 64, 64, 12), 0);
    EXPECT_EQ(out.back(), 0x11 * thread);
    EXPECT_EQ(vxConvertTiffImageData(nullptr, out.data(), 0, 64, 64, 12), 14);
  }
}

// One thread with streams, two with each of two amplifiers, one that only converts: as the public
// header promises, all at once.
TEST_F(Threads, DoAtOnceWhatMayOverlap) {
  const VXP_MA_CONFIGURATION parameters{25.0, 20.0, 64, 64, 1.0};
  const unsigned amplifiers[] = {vxCreateMotionAmplifier(&parameters),
                                 vxCreateMotionAmplifier(&parameters)};
  onThreads([&](int i) {
    if (i == 0) recordAgainAndAgain(folder / "rec.kpf");
    if (i >= 1 && i <= 4) useAmplifier(amplifiers[i % 2], i);
    convert(i);
  });
  for (const unsigned amplifier : amplifiers) EXPECT_EQ(vxCloseMotionAmplifier(amplifier), 25);
}

}  // namespace

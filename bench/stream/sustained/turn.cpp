#include "bench/stream/sustained/turn.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "tests/support/files.h"

namespace BENCH {
namespace {

using Clock = std::chrono::steady_clock;

volatile std::sig_atomic_t interrupted = 0;

double secondsBetween(Clock::time_point from, Clock::time_point to) {
  return std::chrono::duration<double>(to - from).count();
}

/// Waits until `due`: asleep, and awake for the end, because a sleeper is woken too late. Never
/// asleep for long, so that an interrupt is heard.
void waitUntil(Clock::time_point due) {
  constexpr auto kAwake = std::chrono::microseconds(200);
  constexpr auto kAsleep = std::chrono::milliseconds(50);
  while (interrupted == 0 && Clock::now() < due - kAwake) {
    std::this_thread::sleep_until(std::min(due - kAwake, Clock::now() + kAsleep));
  }
  while (interrupted == 0 && Clock::now() < due) {
  }
}

/// The files of the turn before are gone, but a file system may still be busy with them, and the
/// system with the memory that held them: a virtual machine was seen to give a GiB of it back to
/// its host every two seconds, and not to do much else meanwhile.
void settle(const Plan& plan) {
  constexpr double kBytesASecond = 4e8;
  const int descriptor = open(plan.parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor >= 0) {
    syncfs(descriptor);
    close(descriptor);
  }
  waitUntil(Clock::now() + std::chrono::duration_cast<Clock::duration>(
                               std::chrono::duration<double>(plan.bytes() / kBytesASecond)));
}

Course writeFrames(const std::vector<std::unique_ptr<FrameWriter>>& writers, const Plan& plan) {
  Course course;
  course.calls.reserve(plan.frames);
  course.late.reserve(plan.frames);
  const Clock::time_point start = Clock::now();
  for (unsigned n = 0; n < plan.frames; ++n) {
    const auto due =
        start + std::chrono::duration_cast<Clock::duration>(
                    std::chrono::duration<double>(static_cast<double>(n) * plan.interval));
    if (plan.interval > 0) waitUntil(due);
    if (interrupted != 0) throw Interrupted();
    const Clock::time_point before = Clock::now();
    writers[n % plan.streams]->write(n / plan.streams);
    const Clock::time_point after = Clock::now();
    course.calls.push_back(secondsBetween(before, after));
    course.late.push_back(secondsBetween(due, after));
  }
  course.seconds = secondsBetween(start, Clock::now());
  return course;
}

/// A camera has just written what it hands over. What lay idle for the turns of others is fetched
/// here, not in the first frames.
void touch(const Material& material) {
  [[maybe_unused]] volatile unsigned char last = 0;
  for (const auto* blocks : {&material.images, &material.records}) {
    for (const auto& block : *blocks) {
      for (std::size_t page = 0; page < block.size(); page += 4096) last = block[page];
    }
  }
}

}  // namespace

void listenToInterrupts() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    std::signal(signal, [](int) { interrupted = 1; });
  }
}

Course takeTurn(const OpenWriter& open, const Plan& plan) {
  settle(plan);
  touch(*plan.material);
  const TEST_SUPPORT::TemporaryFolder folder;
  const unsigned each = plan.frames / plan.streams;
  std::vector<std::unique_ptr<FrameWriter>> writers;
  for (unsigned i = 0; i < plan.streams; ++i) {
    const std::string name = folder / std::to_string(i);
    std::filesystem::create_directory(name);
    writers.push_back(open(name, *plan.material, each));
  }
  return writeFrames(writers, plan);
}

}  // namespace BENCH

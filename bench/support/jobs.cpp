#include "bench/support/jobs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>

namespace BENCH {

// The rings of a job together take up this much, more than the caches hold: frames come from a
// camera, not from the cache.
constexpr std::size_t kSetSize = std::size_t{64} << 20;

std::size_t roundsFor(std::size_t bytesMoved) { return 2 + kSetSize / (bytesMoved + 1); }

namespace {

void measure(benchmark::State& state, std::size_t bytesMoved, const std::function<Job()>& prepare) {
  const Job job = prepare();
  // The first touch of a buffer faults its pages in, which is nobody's everyday.
  for (std::size_t i = 0; i < roundsFor(bytesMoved); ++i) job();
  for ([[maybe_unused]] auto _ : state) {
    job();
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesMoved));
}

std::string fullName(const std::string& name, FrameSize size) {
  return name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height);
}

Job copyJob(std::size_t bytesMoved) {
  const std::size_t size = bytesMoved / 2;
  auto in = std::make_shared<BufferRing>(size, bytesMoved);
  auto out = std::make_shared<BufferRing>(size, bytesMoved);
  return [in, out, size] { std::memcpy(out->next(), in->next(), size); };
}

}  // namespace

// By eights: a debug build, whose dry run is a test, takes long for each draw.
Bytes randomBytes(std::size_t size, unsigned seed) {
  std::mt19937_64 random(seed);
  Bytes bytes(size);
  for (std::size_t at = 0; at < size; at += sizeof(std::uint64_t)) {
    const std::uint64_t drawn = random();
    std::memcpy(bytes.data() + at, &drawn, std::min(sizeof drawn, size - at));
  }
  return bytes;
}

BufferRing::BufferRing(std::size_t size, std::size_t bytesMoved)
    : buffers_(roundsFor(bytesMoved), randomBytes(size)) {}

unsigned char* BufferRing::next() {
  at_ = (at_ + 1) % buffers_.size();
  return buffers_[at_].data();
}

void addLoneJob(const std::string& name, FrameSize size, std::size_t bytesMoved,
                const std::function<Job()>& prepare) {
  benchmark::RegisterBenchmark(
      fullName(name, size).c_str(),
      [=](benchmark::State& state) { measure(state, bytesMoved, prepare); })
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
}

void addTimedJob(const std::string& name, FrameSize size, std::size_t bytesMoved,
                 const std::function<TimedJob()>& prepare) {
  benchmark::RegisterBenchmark(
      fullName(name, size).c_str(),
      [=](benchmark::State& state) {
        const TimedJob job = prepare();
        for ([[maybe_unused]] auto _ : state) state.SetIterationTime(job());
        state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesMoved));
      })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

double secondsOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void addJob(const std::string& name, FrameSize size, std::size_t bytesMoved,
            const std::function<Job()>& prepare) {
  addLoneJob(name, size, bytesMoved, prepare);
  addLoneJob(name + "/memcpy", size, bytesMoved, [bytesMoved] { return copyJob(bytesMoved); });
}

}  // namespace BENCH

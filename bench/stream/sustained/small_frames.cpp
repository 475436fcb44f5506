// Small frames, for which a call takes a few microseconds: what the advice adds to it.
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/stream/sustained/report.h"
#include "bench/stream/sustained/trace.h"
#include "packed/vx_kpf_packed.h"
#include "stream/vx_stream_kpf_packed.h"

namespace BENCH {
namespace {

using VLM_KPF::ByteRange;
using VLM_KPF::PageCache;
using VX_KPF_PACKED::VxKPFPacked;

class Nobody final : public PageCache {
 public:
  void startWriting(int, ByteRange) noexcept override {}
  void dropWritten(int, ByteRange) noexcept override {}
  int keepOpen(int) noexcept override { return -1; }
  int takePages(const std::filesystem::path&, std::uint64_t) noexcept override { return -1; }
  void keepPages(int, std::uint64_t) noexcept override {}
  void release(int) noexcept override {}
};

class SmallWriter : public FrameWriter {
 public:
  SmallWriter(const std::string& folder, const Material& material, unsigned frames,
              PageCache& cache)
      : material_(material), stream_(cache) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = material.size.width;
    configuration.height = material.size.height;
    configuration.bitsPerPixel = material.bitsPerPixel;
    configuration.frameRate = 1000;
    configuration.frameCount = frames;
    require(stream_.prepareForWriting(folder + "/small.kpf", configuration) == STREAM_WRITING,
            "prepareForWriting");
  }

  void write(unsigned n) override {
    auto frame = std::make_unique<VxKPFPacked>();
    frame->setTiffImageData(material_.images[n % material_.images.size()].data(),
                            material_.size.width, material_.size.height, material_.bitsPerPixel);
    stream_.addFrame(std::move(frame));
  }

 private:
  const Material& material_;
  VLM_KPF::VxKPFPackedStream stream_;
};

/// Microseconds: what a call takes on the whole, with the few that give pages back, and half of
/// all.
struct CallCost {
  std::vector<double> means;
  std::vector<double> halves;

  void add(const Course& course) {
    means.push_back(course.seconds / static_cast<double>(course.calls.size()) * 1e6);
    halves.push_back(percentile(course.calls, 0.5) * 1e6);
  }
};

Course takeSmallTurn(PageCache& cache, const Plan& plan) {
  const auto open = [&cache](const std::string& folder, const Material& material, unsigned frames) {
    return std::make_unique<SmallWriter>(folder, material, frames, cache);
  };
  return takeTurn(open, plan);
}

void print(const char* what, const std::vector<double>& with, const std::vector<double>& without) {
  const double a = percentile(with, 0.5);
  const double b = percentile(without, 0.5);
  std::puts(
      fmt::format("  {:<20}{:>6.2f} us; {:.2f} us when nobody listens: {:.3f}", what, a, b, a / b)
          .c_str());
}

/// Turns of so many frames, with the advice and without.
void compare(const std::string& parent, unsigned frames, unsigned turns) {
  const Material material({64, 64}, 8);
  Plan plan;
  plan.material = &material;
  plan.frames = frames;
  plan.parent = parent;
  Nobody nobody;
  CallCost with, without;
  for (unsigned turn = 0; turn < turns; ++turn) {
    without.add(takeSmallTurn(nobody, plan));
    with.add(takeSmallTurn(PageCache::system(), plan));
  }
  std::puts(fmt::format("\n{} frames of 64 x 64 at 8 bits, {:.1f} GB, medians of {} turns", frames,
                        plan.bytes() / 1e9, turns)
                .c_str());
  print("half of the calls", with.halves, without.halves);
  print("all, a call", with.means, without.means);
}

}  // namespace

// A short recording finds the memory of the one before; a long one takes ever more, unless it gives
// its pages back.
void printSmallFrames(const std::string& parent) {
  compare(parent, 50000, 9);
  compare(parent, 500000, 3);
}

}  // namespace BENCH

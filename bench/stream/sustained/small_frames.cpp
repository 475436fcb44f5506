// Small frames, for which a call takes a few microseconds: what the advice adds to it.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
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

constexpr unsigned kFrames = 50000;  // 206 MB
constexpr unsigned kTurns = 9;

class Nobody final : public PageCache {
 public:
  void startWriting(int, ByteRange) noexcept override {}
  void dropWritten(int, ByteRange) noexcept override {}
  int keepOpen(int) noexcept override { return -1; }
  void release(int) noexcept override {}
};

class SmallWriter : public FrameWriter {
 public:
  SmallWriter(const std::string& folder, const Material& material, PageCache& cache)
      : material_(material), stream_(cache) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.width = material.size.width;
    configuration.height = material.size.height;
    configuration.bitsPerPixel = material.bitsPerPixel;
    configuration.frameRate = 1000;
    configuration.frameCount = kFrames;
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

double microsecondsACall(PageCache& cache, const Plan& plan) {
  const auto open = [&cache](const std::string& folder, const Material& material, unsigned) {
    return std::make_unique<SmallWriter>(folder, material, cache);
  };
  return takeTurn(open, plan).seconds / plan.frames * 1e6;
}

}  // namespace

void printSmallFrames(const std::string& parent) {
  const Material material({64, 64}, 8);
  Plan plan;
  plan.material = &material;
  plan.frames = kFrames;
  plan.parent = parent;
  Nobody nobody;
  std::vector<double> with, without;
  for (unsigned turn = 0; turn < kTurns; ++turn) {
    without.push_back(microsecondsACall(nobody, plan));
    with.push_back(microsecondsACall(PageCache::system(), plan));
  }
  const double a = percentile(with, 0.5);
  const double b = percentile(without, 0.5);
  std::puts(
      fmt::format("\n{} frames of 64 x 64 at 8 bits, medians of {} turns: a call takes {:.2f} us; "
                  "{:.2f} us when nobody listens: {:.3f}",
                  kFrames, kTurns, a, b, a / b)
          .c_str());
}

}  // namespace BENCH

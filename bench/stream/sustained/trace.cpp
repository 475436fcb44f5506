#include "bench/stream/sustained/trace.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numeric>
#include <string>
#include <utility>

#include "packed/vx_kpf_packed.h"
#include "stream/vx_stream_kpf_packed.h"
#include "vx_log.h"

namespace BENCH {
namespace {

using VLM_KPF::ByteRange;
using VLM_KPF::PageCache;
using VX_KPF_PACKED::VxKPFPacked;

/// The system's, with a clock.
class TimedPageCache final : public PageCache {
 public:
  void startWriting(int file, ByteRange bytes) noexcept override {
    start += secondsOf([&] { system().startWriting(file, bytes); });
  }
  void dropWritten(int file, ByteRange bytes) noexcept override {
    wait += secondsOf([&] { system().dropWritten(file, bytes); });
  }
  int keepOpen(int file) noexcept override { return system().keepOpen(file); }
  int takePages(const std::filesystem::path& folder, std::uint64_t bytes) noexcept override {
    return system().takePages(folder, bytes);
  }
  void keepPages(int pages, std::uint64_t bytes) noexcept override {
    wait += secondsOf([&] { system().keepPages(pages, bytes); });
  }
  void release(int file) noexcept override { system().release(file); }

  double start = 0;
  double wait = 0;
};

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationFor(const Material& material, unsigned frames) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = material.size.width;
  configuration.height = material.size.height;
  configuration.bitsPerPixel = material.bitsPerPixel;
  configuration.frameRate = 60;
  configuration.frameCount = frames;
  return configuration;
}

std::unique_ptr<VxKPFPacked> pack(const Material& material, unsigned n) {
  auto frame = std::make_unique<VxKPFPacked>();
  frame->setTiffImageData(material.images[n % material.images.size()].data(), material.size.width,
                          material.size.height, material.bitsPerPixel);
  return frame;
}

class Traced : public FrameWriter {
 public:
  Traced(const std::string& folder, const Material& material, unsigned frames,
         std::vector<Stages>& stages)
      : material_(material), stages_(stages) {
    const auto configuration = configurationFor(material, frames);
    require(stream_.prepareForWriting(folder + "/traced.kpf", configuration) == STREAM_WRITING,
            "prepareForWriting");
  }

  void write(unsigned n) override {
    std::unique_ptr<VxKPFPacked> frame;
    cache_.start = cache_.wait = 0;
    Stages stages;
    stages.pack = secondsOf([&] { frame = pack(material_, n); });
    const double add = secondsOf([&] { stream_.addFrame(std::move(frame)); });
    stages.start = cache_.start;
    stages.wait = cache_.wait;
    stages.write = add - stages.start - stages.wait;
    stages_.push_back(stages);
  }

 private:
  const Material& material_;
  std::vector<Stages>& stages_;
  TimedPageCache cache_;
  VLM_KPF::VxKPFPackedStream stream_{cache_};
};

void printStages(const std::string& name, const Stages& s) {
  std::puts(fmt::format("{:<12}{:>9.2f}{:>9.2f}{:>9.2f}{:>9.2f}{:>9.2f}", name, s.sum() * 1e3,
                        s.pack * 1e3, s.write * 1e3, s.start * 1e3, s.wait * 1e3)
                .c_str());
}

}  // namespace

OpenWriter openTraced(std::vector<Stages>& stages) {
  return [&stages](const std::string& folder, const Material& material, unsigned frames) {
    return std::make_unique<Traced>(folder, material, frames, stages);
  };
}

void printSlowest(const std::vector<Stages>& stages, unsigned count) {
  std::vector<std::size_t> order(stages.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return stages[a].sum() > stages[b].sum(); });
  std::puts(fmt::format("\n{:<12}{:>9}{:>9}{:>9}{:>9}{:>9}", "frame", "call ms", "pack", "write",
                        "start", "wait")
                .c_str());
  Stages all;
  for (const Stages& s : stages) {
    all = {all.pack + s.pack, all.write + s.write, all.start + s.start, all.wait + s.wait};
  }
  for (std::size_t i = 0; i < std::min<std::size_t>(count, order.size()); ++i) {
    printStages(std::to_string(order[i]), stages[order[i]]);
  }
  const auto n = static_cast<double>(std::max<std::size_t>(stages.size(), 1));
  printStages("mean", {all.pack / n, all.write / n, all.start / n, all.wait / n});
}

}  // namespace BENCH

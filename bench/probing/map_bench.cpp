// Maps of the whole picture, beside reading the recording once.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "bench/support/jobs.h"
#include "tests/support/files.h"
#include "tools/kpf/analysis/transform.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/probing/measurement.h"
#include "vlm_internal.h"

namespace BENCH {
namespace {

using namespace KPF_TOOL;

#ifdef NDEBUG
constexpr FrameSize kSize{1280, 1024};
#else
constexpr FrameSize kSize{160, 128};  // tried, not measured
#endif
constexpr unsigned kFrames = 128;
constexpr double kRate = 1000;
constexpr int kNoise = 8;  // 16-bit steps
// As many as a map looks for, each far from the others, in cycles of all frames.
constexpr double kCycles[] = {8, 17, 26, 35, 44, 53};

/// A noisy picture whose light swings at all those frequencies.
std::string recordingOf(int bits, const TEST_SUPPORT::TemporaryFolder& folder) {
  std::string name = folder / ("bits" + std::to_string(bits) + ".kpf");
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = kSize.width;
  configuration.height = kSize.height;
  configuration.bitsPerPixel = bits;
  configuration.frameRate = kRate;
  configuration.frameCount = kFrames;
  const unsigned stream = vxCreatePackStreamer(name, configuration);
  const Bytes noise = randomBytes(kSize.pixels());
  std::vector<std::uint16_t> image(kSize.pixels());
  for (unsigned n = 0; n < kFrames; ++n) {
    double light = 0;
    for (const double cycles : kCycles) {
      light += std::sin(2 * std::numbers::pi * cycles * n / kFrames);
    }
    const auto offset = static_cast<int>(std::lround(32768 + 2048 * light));
    std::transform(noise.begin(), noise.end(), image.begin(), [offset](unsigned char level) {
      return static_cast<std::uint16_t>(offset + kNoise * level);
    });
    vxAddTiffImageData(stream, reinterpret_cast<unsigned char*>(image.data()));
  }
  vxClosePackStreamer(stream);
  return name;
}

Probed probedOf(const std::string& name) {
  const Samples samples = samplesOf(name);
  return {[name, samples] { return openRecording(name, samples); },
          {kSize.width, kSize.height, samples},
          kRate,
          {},
          kFrames};
}

void readOnce(const Probed& probed) {
  std::vector<unsigned char> frame(probed.layout.frameSize());
  const auto source = probed.open();
  while (source->next()) source->copyTo(frame.data(), source->rowSize());
}

void addMapJob(const std::string& name, const Probed& probed,
               const std::function<void(const Probed&)>& work) {
  addTimedJob(name, kSize, probed.layout.frameSize(),
              [=] { return [=] { return secondsOf([&] { work(probed); }) / kFrames; }; });
}

}  // namespace

void addJobs() {
  if (!canTransform()) return;
  static const TEST_SUPPORT::TemporaryFolder folder;
  for (const int bits : {8, 12}) {
    const Probed probed = probedOf(recordingOf(bits, folder));
    const std::string suffix = "-" + std::to_string(bits);
    addMapJob("probe-read" + suffix, probed, readOnce);
    addMapJob("probe-frequency" + suffix, probed,
              [](const Probed& of) { mapOfFrequency(of, 100, [](std::uint64_t) {}); });
    addMapJob("probe-dominant" + suffix, probed,
              [](const Probed& of) { mapOfDominance(of, [](std::uint64_t) {}); });
  }
}

}  // namespace BENCH

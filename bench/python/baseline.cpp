// What the package for Python is measured against, callable from it: the C++ reader and the
// recording functions, each doing a whole recording and telling how long that took.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "reader/kpf_reader.h"
#include "vlm_internal.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point began) {
  return std::chrono::duration<double>(Clock::now() - began).count();
}

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationOf(unsigned width, unsigned height, int bits,
                                                       unsigned frames) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = width, configuration.height = height, configuration.bitsPerPixel = bits;
  configuration.frameRate = 100, configuration.frameCount = frames;
  return configuration;
}

}  // namespace

/// Unpacks every frame of a recording into the same memory. Seconds, opening not counted; negative:
/// it failed.
extern "C" double baseline_unpack(const char* path) noexcept try {
  const KPF_READER::Recording recording(path);
  std::vector<std::uint16_t> samples(recording.header().pixelCount());
  const auto began = Clock::now();
  for (std::uint32_t n = 0; n < recording.recordCount(); ++n) recording.unpack(n, samples);
  return secondsSince(began);
} catch (const std::exception&) {
  return -1;
}

/// Records `frames` images, left-justified, that lie one behind the other and take turns. Seconds
/// that the calls of vxAddTiffImageData took; negative: not all frames were written.
extern "C" double baseline_record(const char* path, const unsigned char* images, unsigned count,
                                  unsigned width, unsigned height, unsigned frames) noexcept try {
  const std::size_t size = std::size_t{width} * height * sizeof(std::uint16_t);
  const unsigned stream = vxCreatePackStreamer(path, configurationOf(width, height, 12, frames));
  if (stream == 0) return -1;
  const auto began = Clock::now();
  for (unsigned n = 0; n < frames; ++n) vxAddTiffImageData(stream, images + n % count * size);
  const double seconds = secondsSince(began);
  const bool complete = vxIsPackStreamerFinished(stream) == STREAM_COMPLETE;
  vxClosePackStreamer(stream);
  return complete ? seconds : -1;
} catch (const std::exception&) {
  return -1;
}

// Whole recordings, from the first byte of the file to its closing, by this library and by others:
// into the page cache, and down to the device. The times are those of one frame.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/stream/peers.h"
#include "tests/support/files.h"
#include "vlm_internal.h"

namespace BENCH {
namespace {

constexpr unsigned kFrames = 16;

void recordOurs(const std::string& file, const Video& video) {
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.width = video.size.width;
  configuration.height = video.size.height;
  configuration.frameRate = 30;
  configuration.bitsPerPixel = 12;
  configuration.frameCount = kFrames;
  const unsigned stream = vxCreatePackStreamer(file + ".kpf", configuration);
  require(stream != 0, "vxCreatePackStreamer");
  for (const Frame& frame : video.frames) {
    vxAddTiffImageData(stream, reinterpret_cast<const unsigned char*>(frame.data()));
  }
  vxClosePackStreamer(stream);
}

/// A soft scene that moves, with a sensor's noise of some 8 of its 4096 steps; `shift` justifies.
Video filmVideo(FrameSize size, int shift) {
  std::mt19937 random(3);
  std::normal_distribution<double> noise(2000.0, 8.0);
  std::vector<double> grain(65521);  // a prime: no pattern shows from row to row
  for (double& value : grain) value = noise(random);
  std::vector<double> column(size.width + 3 * kFrames);
  for (std::size_t x = 0; x < column.size(); ++x)
    column[x] = 900 * std::sin(static_cast<double>(x) / 90);
  Video video{size, std::vector<Frame>(kFrames, Frame(size.pixels()))};
  for (std::size_t n = 0; n < kFrames; ++n) {
    for (std::size_t i = 0; i < size.pixels(); ++i) {
      const double light = column[i % size.width + 3 * n] + grain[(i + 997 * n) % grain.size()];
      const int sample = std::clamp(static_cast<int>(light), 0, 4095);
      video.frames[n][i] = static_cast<std::uint16_t>(sample << shift);
    }
  }
  return video;
}

/// Filmed once, before the first recording that wants it.
const Video& videoOf(FrameSize size, int shift) {
  static std::map<std::pair<unsigned, int>, Video> videos;
  const auto key = std::make_pair(size.width, shift);
  if (!videos.contains(key)) videos.emplace(key, filmVideo(size, shift));
  return videos.at(key);
}

void syncAllBelow(const std::filesystem::path& folder) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const int file = open(entry.path().c_str(), O_RDWR);
    require(file >= 0 && fdatasync(file) == 0, "fdatasync");
    close(file);
  }
}

using Record = std::function<void(const std::string& file, const Video& video)>;

TimedJob recordingJob(FrameSize size, const Record& record, int shift, bool toDevice) {
  const Video* const video = &videoOf(size, shift);
  return [=] {
    const TEST_SUPPORT::TemporaryFolder folder;
    const double seconds = secondsOf([&] {
      record(folder / "video", *video);
      if (toDevice) syncAllBelow(folder.path());
    });
    return seconds / kFrames;
  };
}

void addRecordings(const std::string& name, FrameSize size, const Record& record, int shift = 4) {
  const std::size_t moved = size.pixels() * 2;
  addTimedJob(name + "/cache", size, moved,
              [=] { return recordingJob(size, record, shift, false); });
  addTimedJob(name + "/device", size, moved,
              [=] { return recordingJob(size, record, shift, true); });
}

}  // namespace

void addJobs() {
  for (const FrameSize size : kFrameSizes) {
    addRecordings("recording", size, recordOurs);
    addRecordings("tiff", size, recordTiff);
    addRecordings("hdf5", size, recordHdf5);
    addRecordings("ffv1", size, recordFfv1, 0);
  }
}

}  // namespace BENCH

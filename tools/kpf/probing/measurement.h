// What a box of a recording does over time.
#ifndef KPF_MEASUREMENT_H
#define KPF_MEASUREMENT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/analysis/displacement.h"
#include "tools/kpf/analysis/peaks.h"
#include "tools/kpf/analysis/swing_map.h"
#include "tools/kpf/frames/frame_range.h"
#include "tools/kpf/frames/frame_source.h"

namespace KPF_TOOL {

/// What is probed. Its frames are read more than once.
struct Probed {
  std::function<std::unique_ptr<FrameSource>()> open;
  PictureLayout layout;
  double rate = 0;  // frames per second
  FrameRange range;
  std::uint64_t frames = 0;  // that the range holds
};

/// To be called with the number of frames read so far, in all passes together.
using ProbeProgress = std::function<void(std::uint64_t)>;

/// One figure over time and over frequency.
struct Course {
  explicit Course(const Waveform& of);

  Waveform waveform;
  Spectrum spectrum;
  std::vector<Peak> peaks;
};

/// The peaks that a course keeps.
constexpr std::size_t kCoursePeaks = 5;

struct Measurement {
  Box box;
  Course brightness;
  Course x, y;
  AxisQuality qualityOfX, qualityOfY;
  std::string flaw;  // of the recording, see FrameSource::flaw

  /// The frames that either pass did not have: what went away in between was never measured whole.
  std::vector<bool> lost() const;
  /// The frequency that stands out of the noise most, in hertz.
  std::optional<double> suggestedFrequency() const;
};

/// Reads the frames twice: the displacement is measured from their mean.
Measurement measure(const Probed& probed, const Box& box, const ProbeProgress& progress);

/// How the picture swings: at one frequency, or where at which.
struct MapResult {
  PictureMap map;
  std::optional<double> asked;      // hertz: then the map shows amplitudes, else frequencies
  std::vector<double> frequencies;  // hertz: the one asked for, or those that were found
  double resolution = 0;            // hertz
  std::uint64_t lost = 0;           // frames
  std::string flaw;                 // of the recording
};

/// The amplitudes at `frequency`; reads the frames once.
MapResult mapOfFrequency(const Probed& probed, double frequency, const ProbeProgress& progress);

/// The dominant frequencies; reads the frames twice, first to find what is worth looking for.
MapResult mapOfDominance(const Probed& probed, const ProbeProgress& progress);

}  // namespace KPF_TOOL

#endif

#include "tools/kpf/probing/measurement.h"

#include <cstddef>
#include <utility>

#include "tools/kpf/analysis/candidates.h"
#include "tools/kpf/analysis/frame_batch.h"
#include "tools/kpf/analysis/stretches.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMapFrequencies = 6;

/// Calls `found` or `lost` for every frame of the range; `found` has the frame to copy.
/// @return the flaw of the recording, see FrameSource::flaw.
template <class Found, class Lost>
std::string readFrames(const Probed& probed, std::uint64_t before, const ProbeProgress& progress,
                       Found found, Lost lost) {
  const auto source = probed.open();
  source->skip(probed.range.first());
  for (std::uint64_t n = 0; n < probed.frames && source->next(); ++n) {
    if (source->lost()) {
      lost();
    } else {
      found(*source);
    }
    progress(before + n + 1);
  }
  return source->flaw();
}

/// Passes every frame through batches to what maps them. @return how many were lost, and the flaw.
template <class Sink>
std::pair<std::uint64_t, std::string> readBatches(const Probed& probed, std::uint64_t before,
                                                  const ProbeProgress& progress, Sink& sink) {
  FrameBatch batch(probed.layout, [&sink](const unsigned char* frames, std::size_t count) {
    sink.add(frames, count);
  });
  std::uint64_t lost = 0;
  const std::string flaw = readFrames(
      probed, before, progress,
      [&batch](FrameSource& source) {
        source.copyTo(batch.place(), source.rowSize());
        batch.add();
      },
      [&batch, &lost] {
        batch.addLost();
        ++lost;
      });
  batch.finish();
  return {lost, flaw};
}

double resolutionOf(const Probed& probed, const Stretches& stretches) {
  return probed.rate / static_cast<double>(stretches.length);
}

}  // namespace

Course::Course(const Waveform& of)
    : waveform(of), spectrum(spectrumOf(of)), peaks(peaksOf(spectrum, kCoursePeaks)) {}

std::optional<double> Measurement::suggestedFrequency() const {
  const Peak* best = nullptr;
  for (const Course* course : {&x, &y, &brightness}) {
    for (const Peak& peak : course->peaks) {
      if (best == nullptr || peak.overNoise > best->overNoise) best = &peak;
    }
  }
  return best == nullptr ? std::nullopt : std::optional<double>(best->frequency);
}

Measurement measure(const Probed& probed, const Box& box, const ProbeProgress& progress) {
  std::vector<unsigned char> frame(probed.layout.frameSize());
  const auto copied = [&frame](FrameSource& source) {
    source.copyTo(frame.data(), source.rowSize());
    return frame.data();
  };
  Waveform brightness(probed.rate);
  MeanPicture mean(probed.layout, grown(box, Displacement::kMargin, probed.layout));
  const std::string flaw = readFrames(
      probed, 0, progress,
      [&](FrameSource& source) {
        mean.add(copied(source));
        brightness.add(meanLevel(frame.data(), probed.layout, box));
      },
      [&brightness] { brightness.addLost(); });
  Displacement displacement(box, mean, probed.rate);
  readFrames(
      probed, probed.frames, progress,
      [&](FrameSource& source) { displacement.add(copied(source)); },
      [&displacement] { displacement.addLost(); });
  return {box,
          Course(brightness),
          Course(displacement.x()),
          Course(displacement.y()),
          displacement.qualityOfX(),
          displacement.qualityOfY(),
          flaw};
}

MapResult mapOfFrequency(const Probed& probed, double frequency, const ProbeProgress& progress) {
  const Stretches stretches = Stretches::of(probed.frames);
  SwingMap map(probed.layout, stretches, probed.rate, {frequency});
  const auto [lost, flaw] = readBatches(probed, 0, progress, map);
  return {map.amplitudes(0), frequency, {frequency}, resolutionOf(probed, stretches), lost, flaw};
}

MapResult mapOfDominance(const Probed& probed, const ProbeProgress& progress) {
  const Stretches stretches = Stretches::of(probed.frames);
  Candidates candidates(probed.layout, stretches, probed.rate);
  const auto [lost, flaw] = readBatches(probed, 0, progress, candidates);
  const std::vector<double> frequencies = candidates.frequencies(kMapFrequencies);
  SwingMap map(probed.layout, stretches, probed.rate, frequencies);
  // Where nothing swings nothing is left to look at.
  if (!frequencies.empty()) readBatches(probed, probed.frames, progress, map);
  return {map.dominant(), std::nullopt, frequencies, resolutionOf(probed, stretches), lost, flaw};
}

}  // namespace KPF_TOOL

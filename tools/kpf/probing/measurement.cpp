#include "tools/kpf/probing/measurement.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/kpf/analysis/candidates.h"
#include "tools/kpf/analysis/frame_batch.h"
#include "tools/kpf/analysis/stretches.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMapFrequencies = 6;

/// Opens what is probed. It may have changed since it was looked at: each pass opens it anew.
std::unique_ptr<FrameSource> opened(const Probed& probed) {
  auto source = probed.open();
  if (source->width() != probed.layout.width || source->height() != probed.layout.height ||
      source->samples() != probed.layout.samples) {
    throw ToolError(Outcome::kCutShort, "another recording has taken its place meanwhile",
                    "Try again when nobody records under this name.");
  }
  return source;
}

/// Calls `found` or `lost` for every frame of the range; `found` has the frame to copy. Frames
/// behind an end that came early are lost ones: all passes are of one length.
/// @return the flaw of the recording, see FrameSource::flaw.
template <class Found, class Lost>
std::string readFrames(const Probed& probed, std::uint64_t before, const ProbeProgress& progress,
                       Found found, Lost lost) {
  const auto source = opened(probed);
  source->skip(probed.range.first());
  std::uint64_t gone = 0;
  for (std::uint64_t n = 0; n < probed.frames; ++n) {
    const bool there = source->next();
    if (!there) ++gone;
    if (!there || source->lost()) {
      lost();
    } else {
      found(*source);
    }
    progress(before + n + 1);
  }
  std::string flaw = source->flaw();
  if (!flaw.empty() || gone == 0) return flaw;
  return fmt::format("{} of {} frames went away meanwhile", gone, probed.frames);
}

/// Of two passes. What was lost before the first is lost in the second too.
std::string laterFlaw(const std::string& first, const std::string& second) {
  return second.empty() ? first : second;
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

std::vector<bool> Measurement::lost() const {
  std::vector<bool> lost = brightness.waveform.lost();
  for (std::size_t n = 0; n < lost.size(); ++n) lost[n] = lost[n] || x.waveform.lost()[n];
  return lost;
}

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
  const std::string flawOfSecond = readFrames(
      probed, probed.frames, progress,
      [&](FrameSource& source) { displacement.add(copied(source)); },
      [&displacement] { displacement.addLost(); });
  return {box,
          Course(brightness),
          Course(displacement.x()),
          Course(displacement.y()),
          displacement.qualityOfX(),
          displacement.qualityOfY(),
          laterFlaw(flaw, flawOfSecond)};
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
  auto [lost, flaw] = readBatches(probed, 0, progress, candidates);
  const std::vector<double> frequencies = candidates.frequencies(kMapFrequencies);
  SwingMap map(probed.layout, stretches, probed.rate, frequencies);
  // Where nothing swings nothing is left to look at.
  if (!frequencies.empty()) {
    const auto [lostOfSecond, flawOfSecond] = readBatches(probed, probed.frames, progress, map);
    lost = std::max(lost, lostOfSecond);
    flaw = laterFlaw(flaw, flawOfSecond);
  }
  return {map.dominant(), std::nullopt, frequencies, resolutionOf(probed, stretches), lost, flaw};
}

}  // namespace KPF_TOOL

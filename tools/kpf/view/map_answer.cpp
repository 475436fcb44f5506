#include "tools/kpf/view/map_answer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/analysis/candidates.h"
#include "tools/kpf/analysis/frame_batch.h"
#include "tools/kpf/analysis/peaks.h"
#include "tools/kpf/analysis/stretches.h"
#include "tools/kpf/analysis/swing_map.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/analysed_frames.h"
#include "tools/kpf/view/numbers.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kFrequencies = 6;  // that a pixel may be told to swing at
constexpr unsigned kMostCells = 320;     // along either side

template <class Sink>
void readInto(Sink& sink, AnalysedFrames& frames, const AnalysedRange& range) {
  FrameBatch batch(frames.layout(), [&sink](const unsigned char* bytes, std::size_t count) {
    sink.add(bytes, count);
  });
  for (std::uint32_t place = range.first; place < range.end; ++place) {
    if (const unsigned char* const frame = frames.at(place)) {
      std::copy_n(frame, frames.layout().frameSize(), batch.place());
      batch.add();
    } else {
      batch.addLost();
    }
  }
  batch.finish();
}

/// The largest value of each cell.
Json cellsJson(const PictureMap& map, unsigned cell) {
  const unsigned width = (map.width + cell - 1) / cell, height = (map.height + cell - 1) / cell;
  std::vector<float> cells(std::size_t{width} * height);
  for (unsigned y = 0; y < map.height; ++y) {
    for (unsigned x = 0; x < map.width; ++x) {
      float& value = cells[std::size_t{y / cell} * width + x / cell];
      value = std::max(value, map.values[std::size_t{y} * map.width + x]);
    }
  }
  Json values = Json::array();
  for (const float value : cells) values.push_back(value > 0 ? Json(value) : Json(nullptr));
  const float most = cells.empty() ? 0 : *std::max_element(cells.begin(), cells.end());
  return {{"width", width}, {"height", height}, {"cell", cell}, {"values", values}, {"most", most}};
}

PictureMap energyMap(double frequency, AnalysedFrames& frames, const AnalysedRange& range,
                     double rate) {
  const Stretches stretches = Stretches::of(range.frames());
  const double lowest = kFewestCycles * rate / static_cast<double>(stretches.length);
  if (frequency < lowest || frequency > rate / 2) {
    throw ToolError(Outcome::kWrongUsage,
                    fmt::format("a map of these frames tells {:.4g} to {:g} Hz", lowest, rate / 2),
                    "Choose a frequency between them.");
  }
  SwingMap map(frames.layout(), stretches, rate, {frequency});
  readInto(map, frames, range);
  return map.amplitudes(0);
}

PictureMap dominantMap(AnalysedFrames& frames, const AnalysedRange& range, double rate) {
  const Stretches stretches = Stretches::of(range.frames());
  Candidates candidates(frames.layout(), stretches, rate);
  readInto(candidates, frames, range);
  const std::vector<double> frequencies = candidates.frequencies(kFrequencies);
  SwingMap map(frames.layout(), stretches, rate, frequencies);
  if (!frequencies.empty()) readInto(map, frames, range);
  return map.dominant();
}

}  // namespace

Reply answerMap(const Request& request, ShownRecording& recording) {
  const double rate = recording.header().frameRate;
  AnalysedFrames frames(recording);
  const AnalysedRange range(request, recording, frames.layout().pixelCount());
  const bool energy = textOf(request, "kind") == "energy";
  const double frequency = numberOf(request, "frequency", 1);
  const PictureMap map =
      energy ? energyMap(frequency, frames, range, rate) : dominantMap(frames, range, rate);
  const unsigned longer = std::max(map.width, map.height);
  Json json = cellsJson(map, std::max((longer + kMostCells - 1) / kMostCells, 1U));
  json["text"] =
      energy ? fmt::format("Swings at {:g} Hz, of {} frames.", frequency, range.frames())
             : fmt::format("The strongest frequency of each pixel, of {} frames.", range.frames());
  return replyWith(json);
}

}  // namespace KPF_TOOL

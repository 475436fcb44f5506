#include "tools/kpf/view/map_answer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "tools/kpf/analysis/peaks.h"
#include "tools/kpf/analysis/stretches.h"
#include "tools/kpf/probing/measurement.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/numbers.h"
#include "tools/kpf/view/probed_piece.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kMostCells = 320;  // along either side

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

/// @throws ToolError where a map of these frames cannot tell it.
void checkFrequency(double frequency, const Probed& piece) {
  const auto length = static_cast<double>(Stretches::of(piece.frames).length);
  const double lowest = kFewestCycles * piece.rate / length;
  if (frequency >= lowest && frequency <= piece.rate / 2) return;
  throw ToolError(
      Outcome::kWrongUsage,
      fmt::format("a map of these frames tells {:.4g} to {:g} Hz", lowest, piece.rate / 2),
      "Choose a frequency between them.");
}

}  // namespace

Reply answerMap(const Request& request, ShownRecording& recording) {
  const Probed piece = probedPiece(request, recording, recording.header().pixelCount());
  const bool energy = textOf(request, "kind") == "energy";
  const double frequency = numberOf(request, "frequency", 1);
  if (energy) checkFrequency(frequency, piece);
  const PictureMap map = energy ? mapOfFrequency(piece, frequency, noProgress).map
                                : mapOfDominance(piece, noProgress).map;
  const unsigned longer = std::max(map.width, map.height);
  Json json = cellsJson(map, std::max((longer + kMostCells - 1) / kMostCells, 1U));
  json["text"] =
      energy ? fmt::format("Swings at {:g} Hz, of {} frames.", frequency, piece.frames)
             : fmt::format("The strongest frequency of each pixel, of {} frames.", piece.frames);
  return replyWith(json);
}

}  // namespace KPF_TOOL

#include "tools/kpf/probing/files.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "tools/kpf/media/media.h"
#include "tools/kpf/plots/drawn_plots.h"
#include "tools/kpf/plots/svg.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr float kStepsOfALevel = 256;  // in 16-bit maps
constexpr float kHighest16 = 65535;
constexpr float kHighest8 = 255;

/// In any case, as everywhere.
bool hasEnd(const std::string& name, const char* end) { return lowerCase(name).ends_with(end); }

bool isTiff(const std::string& name) { return hasEnd(name, ".tif") || hasEnd(name, ".tiff"); }

void appendSample(std::string& bytes, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> 8 * i & 0xFF);
}

/// The values as whole numbers, `steps` to one, of which `highest` is the last.
std::string samplesOf(const PictureMap& map, float steps, float highest, int size) {
  std::string bytes;
  for (const float value : map.values) {
    const float sample = std::clamp(std::round(value * steps), 0.F, highest);
    appendSample(bytes, static_cast<std::uint32_t>(sample), size);
  }
  return bytes;
}

std::string singlesOf(const PictureMap& map) {
  std::string bytes;
  for (const float value : map.values) appendSample(bytes, std::bit_cast<std::uint32_t>(value), 4);
  return bytes;
}

void writeImage(const Destination& destination, unsigned width, unsigned height, Samples samples,
                const void* rows) {
  const auto output = openEncodedOutput(destination, {width, height, samples, 1, 0, 1});
  output->add(static_cast<const unsigned char*>(rows));
  output->finish();
}

}  // namespace

void writeText(const Destination& destination, const std::string& text) {
  NewFile file(destination.name, destination);
  file.write(text.data(), text.size());
  file.commit();
}

void writePlots(const Destination& destination, const std::vector<Plot>& plots) {
  if (hasEnd(destination.name, ".svg")) return writeText(destination, svgOf(plots));
  const Canvas canvas = drawnPlots(plots);
  writeImage(destination, canvas.width(), canvas.height(), Samples::k8Bit, canvas.rows());
}

void writeMap(const Destination& destination, const MapResult& found, double rate) {
  const PictureMap& map = found.map;
  if (hasEnd(destination.name, ".raw")) return writeText(destination, singlesOf(map));
  if (isTiff(destination.name)) {
    const float steps = found.asked ? kStepsOfALevel : kHighest16 / static_cast<float>(rate / 2);
    const std::string rows = samplesOf(map, steps, kHighest16, 2);
    return writeImage(destination, map.width, map.height, Samples::k16Bit, rows.data());
  }
  const float highest = *std::max_element(map.values.begin(), map.values.end());
  const std::string rows = samplesOf(map, highest > 0 ? kHighest8 / highest : 0, kHighest8, 1);
  writeImage(destination, map.width, map.height, Samples::k8Bit, rows.data());
}

bool isMapName(const std::string& name) {
  return hasEnd(name, ".raw") || hasEnd(name, ".png") || isTiff(name);
}

bool isPlotName(const std::string& name) { return hasEnd(name, ".svg") || hasEnd(name, ".png"); }

}  // namespace KPF_TOOL

#include "tools/kpf/probing/report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

/// One line of the answer. What has no name goes on with the line above.
template <class... Arguments>
void line(const char* name, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  fmt::print("{:<11} {}\n", name, fmt::format(format, std::forward<Arguments>(arguments)...));
}

void printPeaks(const Course& course, const char* unit, std::optional<double> scale) {
  if (course.peaks.empty()) line("", "nothing stands out of the noise");
  for (const Peak& peak : course.peaks) {
    const std::string length =
        scale ? fmt::format(" = {:.4g} mm", peak.amplitude * *scale) : std::string();
    line("", "{:.5g} Hz, {:.4g} {}{} to either side, {:.3g} times the noise", peak.frequency,
         peak.amplitude, unit, length, peak.overNoise);
  }
}

void printAxis(const char* name, const Course& course, const AxisQuality& quality,
               std::optional<double> scale) {
  if (quality.shown == 0) {
    line(name, "not seen: the texture in the box has no slope along {}", name);
    return;
  }
  line(name, "{:.0f} % of a movement shown; {:.2g} pixels standard error of a frame",
       100 * quality.shown, quality.error);
  printPeaks(course, "pixels", scale);
}

void printBox(const Report& report) {
  const Measurement& found = *report.box;
  const Spectrum& spectrum = found.brightness.spectrum;
  line("box", "{} x {} pixels at {},{}", found.box.width, found.box.height, found.box.x,
       found.box.y);
  const std::vector<bool> all = found.lost();
  const auto lost = std::count(all.begin(), all.end(), true);
  line("lost", "{}",
       lost == 0
           ? "none"
           : countText(static_cast<std::uint64_t>(lost), "frame") + ", bridged by a straight line");
  line("limits", "resolution {:.4g} Hz; above {:g} Hz (half the frame rate) nothing is told apart",
       spectrum.resolution, spectrum.nyquist);
  line("brightness", "{:.2f} levels on average", found.brightness.waveform.mean());
  printPeaks(found.brightness, "levels", std::nullopt);
  printAxis("x", found.x, found.qualityOfX, report.scale);
  printAxis("y", found.y, found.qualityOfY, report.scale);
  if (const auto frequency = found.suggestedFrequency()) {
    line("suggested", "--frequency {:.4g}", *frequency);
  }
}

float highestOf(const PictureMap& map) {
  return map.values.empty() ? 0 : *std::max_element(map.values.begin(), map.values.end());
}

void printMap(const Report& report) {
  const MapResult& found = *report.map;
  line("map", "{}, resolution {:.4g} Hz", escaped(report.mapFile), found.resolution);
  if (found.lost > 0) line("", "{} bridged", countText(found.lost, "lost frame"));
  if (found.asked) {
    line("", "amplitude at {:.5g} Hz, up to {:.4g} levels", *found.asked, highestOf(found.map));
    return;
  }
  if (found.frequencies.empty()) line("", "nothing swings");
  for (const double frequency : found.frequencies) {
    const auto value = static_cast<float>(frequency);
    const auto lit = std::count(found.map.values.begin(), found.map.values.end(), value);
    line("", "{:.5g} Hz in {:.3g} % of the picture", frequency,
         100 * static_cast<double>(lit) / static_cast<double>(found.map.values.size()));
  }
}

Json peaksJson(const Course& course, std::optional<double> scale) {
  Json json = Json::array();
  for (const Peak& peak : course.peaks) {
    Json one{{"frequency", peak.frequency},
             {"amplitude", peak.amplitude},
             {"overNoise", peak.overNoise}};
    if (scale) one["millimetres"] = peak.amplitude * *scale;
    json.push_back(one);
  }
  return json;
}

Json axisJson(const Course& course, const AxisQuality& quality, std::optional<double> scale) {
  return {{"shown", quality.shown}, {"error", quality.error}, {"peaks", peaksJson(course, scale)}};
}

Json boxJson(const Report& report) {
  const Measurement& found = *report.box;
  const std::vector<bool> lost = found.lost();
  Json lostFrames = Json::array();
  for (std::size_t n = 0; n < lost.size(); ++n) {
    if (lost[n]) lostFrames.push_back(n);
  }
  const auto suggested = found.suggestedFrequency();
  return {{"x", found.box.x},
          {"y", found.box.y},
          {"width", found.box.width},
          {"height", found.box.height},
          {"lost", lostFrames},
          {"resolution", found.brightness.spectrum.resolution},
          {"nyquist", found.brightness.spectrum.nyquist},
          {"brightness",
           {{"mean", found.brightness.waveform.mean()},
            {"peaks", peaksJson(found.brightness, std::nullopt)}}},
          {"displacementX", axisJson(found.x, found.qualityOfX, report.scale)},
          {"displacementY", axisJson(found.y, found.qualityOfY, report.scale)},
          {"suggestedFrequency", suggested ? Json(*suggested) : Json(nullptr)}};
}

Json mapJson(const Report& report) {
  const MapResult& found = *report.map;
  return {{"file", report.mapFile},           {"shows", found.asked ? "amplitude" : "frequency"},
          {"frequencies", found.frequencies}, {"resolution", found.resolution},
          {"highest", highestOf(found.map)},  {"lost", found.lost}};
}

}  // namespace

void printReport(const Report& report) {
  line("file", "{}", escaped(report.file));
  line("frames", "{} at {:g} frames/s, {:.4g} s", report.frames, report.rate,
       static_cast<double>(report.frames) / report.rate);
  if (report.box) printBox(report);
  if (report.map) printMap(report);
}

Json jsonOf(const Report& report) {
  Json json{{"file", report.file}, {"rate", report.rate}, {"frames", report.frames}};
  if (report.scale) json["millimetresPerPixel"] = *report.scale;
  if (report.box) json["box"] = boxJson(report);
  if (report.map) json["map"] = mapJson(report);
  return json;
}

}  // namespace KPF_TOOL

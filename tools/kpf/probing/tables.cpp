// Results as tables of figures, and as curves.
#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/probing/files.h"

namespace KPF_TOOL {
namespace {

/// Empty where the axis shows nothing: 0 would be a measurement.
std::string cell(const AxisQuality& quality, double value) {
  return quality.shown > 0 ? fmt::format("{:.9g}", value) : "";
}

std::string cellAt(const AxisQuality& quality, const Spectrum& spectrum, std::size_t bin) {
  return cell(quality, spectrum.amplitudes[bin]);
}

std::string labelOf(const Peak& peak) { return fmt::format("{:.4g} Hz", peak.frequency); }

void addPlots(std::vector<Plot>& plots, const Course& course, const std::string& title) {
  Plot waveform{title, "s", {}, {}, {}, false};
  const auto& values = course.waveform.values();
  for (std::size_t n = 0; n < values.size(); ++n) {
    const double seconds = static_cast<double>(n) / course.waveform.rate();
    waveform.curve.push_back({seconds, values[n]});
    if (course.waveform.lost()[n]) waveform.gaps.push_back(seconds);
  }
  Plot spectrum{"amplitude", "Hz", {}, {}, {}, true};
  for (std::size_t bin = 0; bin < course.spectrum.amplitudes.size(); ++bin) {
    spectrum.curve.push_back({course.spectrum.frequencyOf(bin), course.spectrum.amplitudes[bin]});
  }
  for (const Peak& peak : course.peaks) {
    spectrum.marks.push_back({{peak.frequency, peak.amplitude}, labelOf(peak)});
  }
  plots.push_back(waveform);
  plots.push_back(spectrum);
}

}  // namespace

std::string waveformTable(const Measurement& found, std::uint64_t first,
                          std::optional<double> scale) {
  std::string table = "frame,seconds,lost,brightness,x,y";
  table += scale ? ",x_mm,y_mm\n" : "\n";
  const Waveform& brightness = found.brightness.waveform;
  const std::vector<bool> lost = found.lost();
  for (std::size_t n = 0; n < brightness.values().size(); ++n) {
    const double x = found.x.waveform.values()[n], y = found.y.waveform.values()[n];
    table +=
        fmt::format("{},{:.9g},{},{:.9g},{},{}", first + n,
                    static_cast<double>(n) / brightness.rate(), lost[n] ? 1 : 0,
                    brightness.values()[n], cell(found.qualityOfX, x), cell(found.qualityOfY, y));
    if (scale) {
      table += fmt::format(",{},{}", cell(found.qualityOfX, x * *scale),
                           cell(found.qualityOfY, y * *scale));
    }
    table += '\n';
  }
  return table;
}

std::string spectrumTable(const Measurement& found) {
  std::string table = "hertz,brightness,x,y\n";
  const Spectrum& brightness = found.brightness.spectrum;
  for (std::size_t bin = 0; bin < brightness.amplitudes.size(); ++bin) {
    table +=
        fmt::format("{:.9g},{:.9g},{},{}\n", brightness.frequencyOf(bin),
                    brightness.amplitudes[bin], cellAt(found.qualityOfX, found.x.spectrum, bin),
                    cellAt(found.qualityOfY, found.y.spectrum, bin));
  }
  return table;
}

std::vector<Plot> plotsOf(const Measurement& found) {
  std::vector<Plot> plots;
  addPlots(plots, found.brightness, "brightness, levels");
  if (found.qualityOfX.shown > 0) addPlots(plots, found.x, "x, pixels");
  if (found.qualityOfY.shown > 0) addPlots(plots, found.y, "y, pixels");
  return plots;
}

}  // namespace KPF_TOOL

// The picture of the calls: dots over a logarithmic axis from 0.1 ms to 10 s.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "bench/stream/sustained/report.h"

namespace BENCH {
namespace {

constexpr double kLeft = 56, kWidth = 800, kTop = 34, kHeight = 190, kPanel = 250;
constexpr double kTextRoom = 16;  // below and beside the axes
constexpr double kLowest = 1e-4;  // seconds
constexpr double kDecades = 5;

double yOf(double seconds) {
  const double decades = std::log10(std::clamp(seconds / kLowest, 1.0, 1e5));
  return kTop + kHeight * (1 - decades / kDecades);
}

std::string text(double x, double y, const std::string& anchor, const std::string& words) {
  return fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\">{}</text>\n", x, y, anchor,
                     words);
}

std::string line(double y, const std::string& style) {
  return fmt::format("<path d=\"M{:.1f} {:.1f}h{:.1f}\" class=\"{}\"/>\n", kLeft, y, kWidth, style);
}

std::string axes(double frameTime) {
  std::string svg;
  for (int decade = 0; decade <= static_cast<int>(kDecades); ++decade) {
    const double seconds = kLowest * std::pow(10, decade);
    svg += line(yOf(seconds), "grid");
    svg += text(
        kLeft - 6, yOf(seconds) + 4, "end",
        seconds < 0.9 ? fmt::format("{:g} ms", seconds * 1e3) : fmt::format("{:g} s", seconds));
  }
  svg += line(yOf(frameTime), "due");
  return svg + text(kLeft + kWidth, yOf(frameTime) - 4, "end", "time of a frame");
}

/// Every call a dot: a stroke of no length with round ends.
std::string dots(const std::vector<double>& calls) {
  std::string path = "<path class=\"call\" d=\"";
  const double step = kWidth / static_cast<double>(std::max<std::size_t>(calls.size(), 1));
  for (std::size_t n = 0; n < calls.size(); ++n) {
    path += fmt::format("M{:.1f} {:.1f}h0", kLeft + step * static_cast<double>(n), yOf(calls[n]));
  }
  return path + "\"/>\n";
}

std::string panel(const Series& series, double frameTime) {
  return text(kLeft, kTop - 12, "start", "<tspan class=\"name\">" + series.name + "</tspan>") +
         axes(frameTime) + dots(series.calls) +
         text(kLeft, kTop + kHeight + kTextRoom, "middle", "0") +
         text(kLeft + kWidth, kTop + kHeight + kTextRoom, "end",
              fmt::format("frame {}", series.calls.size()));
}

}  // namespace

void drawCalls(const std::string& file, const std::vector<Series>& all, double frameTime) {
  const double height = kPanel * static_cast<double>(all.size());
  std::string svg = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {:.0f} {:.0f}\" font-family="
      "\"sans-serif\" font-size=\"12\">\n<style>.grid{{stroke:#ccc}}.due{{stroke:#c33}}"
      ".name{{font-weight:bold}}.call{{stroke:#147;stroke-width:2;stroke-linecap:round}}</style>\n"
      "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n",
      kLeft + kWidth + kTextRoom, height);
  for (std::size_t i = 0; i < all.size(); ++i) {
    svg += fmt::format("<g transform=\"translate(0 {:.0f})\">\n", kPanel * static_cast<double>(i));
    svg += panel(all[i], frameTime) + "</g>\n";
  }
  std::ofstream out(file);
  out << svg << "</svg>\n";
  require(out.flush().good(), "writing the picture");
}

}  // namespace BENCH

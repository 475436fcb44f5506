#include "tools/kpf/plots/svg.h"

#include <fmt/format.h>

namespace KPF_TOOL {
namespace {

const char* colourOf(PlotSurface::Ink ink) {
  switch (ink) {
    case PlotSurface::Ink::kAxis:
      return "#888888";
    case PlotSurface::Ink::kGap:
      return "#dd9999";
    default:
      return "#1f5f9f";
  }
}

std::string escapedForXml(const std::string& text) {
  std::string out;
  for (const char letter : text) {
    switch (letter) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      default:
        out += letter;
    }
  }
  return out;
}

class Svg : public PlotSurface {
 public:
  Svg(unsigned width, unsigned height)
      : document(fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" "
                             "height=\"{1}\" viewBox=\"0 0 {0} {1}\">\n"
                             "<rect width=\"{0}\" height=\"{1}\" fill=\"white\"/>\n",
                             width, height)) {}

  void line(const std::vector<PlotPoint>& points, Ink ink) override {
    document += fmt::format("<polyline fill=\"none\" stroke=\"{}\" points=\"", colourOf(ink));
    for (const PlotPoint& point : points)
      document += fmt::format("{:.1f},{:.1f} ", point.x, point.y);
    document += "\"/>\n";
  }

  void text(double x, double y, const std::string& text) override {
    document += fmt::format(
        "<text x=\"{:.1f}\" y=\"{:.1f}\" font-family=\"sans-serif\" font-size=\"13\">{}</text>\n",
        x, y, escapedForXml(text));
  }

  std::string document;
};

}  // namespace

std::string svgOf(const std::vector<Plot>& plots) {
  Svg svg(2 * kPlotWidth, plotRows(plots.size()) * kPlotHeight);
  drawPlots(plots, svg);
  return svg.document + "</svg>\n";
}

}  // namespace KPF_TOOL

#include "tools/kpf/plots/drawn_plots.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <string>

namespace KPF_TOOL {
namespace {

unsigned char greyOf(PlotSurface::Ink ink) {
  switch (ink) {
    case PlotSurface::Ink::kAxis:
      return 110;
    case PlotSurface::Ink::kGap:
      return 70;
    default:
      return 220;
  }
}

class Drawing : public PlotSurface {
 public:
  Drawing(unsigned width, unsigned height) : canvas(width, height) {}

  void line(const std::vector<PlotPoint>& points, Ink ink) override {
    for (std::size_t i = 1; i < points.size(); ++i) stroke(points[i - 1], points[i], greyOf(ink));
  }

  void text(double x, double y, const std::string& text) override {
    std::string capitals = text;
    std::transform(capitals.begin(), capitals.end(), capitals.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    const double top = std::max(y - kLetterHeight, 0.0);
    canvas.write(capitals, static_cast<unsigned>(std::max(x, 0.0)), static_cast<unsigned>(top));
  }

  Canvas canvas;

 private:
  static constexpr double kLetterHeight = Canvas::kCaptionHeight - 2 * Canvas::kCaptionMargin;

  /// A dot for every pixel along the longer axis.
  void stroke(const PlotPoint& from, const PlotPoint& to, unsigned char grey) {
    const auto steps = static_cast<int>(
        std::ceil(std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1.})));
    for (int step = 0; step <= steps; ++step) {
      canvas.dot(static_cast<unsigned>(std::lround(from.x + (to.x - from.x) * step / steps)),
                 static_cast<unsigned>(std::lround(from.y + (to.y - from.y) * step / steps)), grey);
    }
  }
};

}  // namespace

Canvas drawnPlots(const std::vector<Plot>& plots) {
  Drawing drawing(2 * kPlotWidth, plotRows(plots.size()) * kPlotHeight);
  drawPlots(plots, drawing);
  return drawing.canvas;
}

}  // namespace KPF_TOOL

#include "tools/kpf/plots/plot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace KPF_TOOL {
namespace {

// Around the curve there is room for the title above, the numbers below, and a little at the sides.
constexpr double kLeft = 14, kRight = 14, kTop = 34, kBottom = 26;
constexpr double kInset = 4;  // of texts, pixels

/// From figures to pixels, within one plot.
class Scale {
 public:
  Scale(const Plot& plot, double left, double top) : left_(left + kLeft), top_(top + kTop) {
    if (plot.curve.empty()) return;
    const auto lower = [](const PlotPoint& a, const PlotPoint& b) { return a.y < b.y; };
    const auto [low, high] = std::minmax_element(plot.curve.begin(), plot.curve.end(), lower);
    x0 = plot.curve.front().x;
    x1 = plot.curve.back().x;
    y0 = plot.fromZero ? 0 : low->y;
    y1 = high->y;
  }

  PlotPoint at(const PlotPoint& point) const { return {atX(point.x), atY(point.y)}; }
  double atX(double x) const { return left_ + part(x, x0, x1) * width; }
  double atY(double y) const { return top_ + (1 - part(y, y0, y1)) * height; }

  double left() const { return left_; }
  double top() const { return top_; }

  static constexpr double width = kPlotWidth - kLeft - kRight;
  static constexpr double height = kPlotHeight - kTop - kBottom;
  double x0 = 0, x1 = 1, y0 = 0, y1 = 1;

 private:
  /// A curve that is level lies in the middle.
  static double part(double value, double low, double high) {
    return high > low ? (value - low) / (high - low) : 0.5;
  }

  double left_, top_;
};

void drawFrame(const Plot& plot, const Scale& scale, PlotSurface& surface) {
  const double right = scale.left() + Scale::width, bottom = scale.top() + Scale::height;
  surface.line({{scale.left(), scale.top()}, {scale.left(), bottom}, {right, bottom}},
               PlotSurface::Ink::kAxis);
  surface.text(scale.left(), scale.top() - 3 * kInset,
               fmt::format("{}, {:.4g} to {:.4g}", plot.title, scale.y0, scale.y1));
  surface.text(scale.left(), bottom + 5 * kInset,
               fmt::format("{:.4g} to {:.4g} {}", scale.x0, scale.x1, plot.unitX));
}

void drawPlot(const Plot& plot, double left, double top, PlotSurface& surface) {
  const Scale scale(plot, left, top);
  for (const double x : plot.gaps) {
    const double at = scale.atX(x);
    surface.line({{at, scale.top()}, {at, scale.top() + Scale::height}}, PlotSurface::Ink::kGap);
  }
  drawFrame(plot, scale, surface);
  std::vector<PlotPoint> curve;
  for (const PlotPoint& point : plot.curve) curve.push_back(scale.at(point));
  if (!curve.empty()) surface.line(curve, PlotSurface::Ink::kCurve);
  for (const PlotMark& mark : plot.marks) {
    const PlotPoint at = scale.at(mark.at);
    surface.text(at.x + kInset, std::max(at.y + 2 * kInset, scale.top() + 4 * kInset), mark.text);
  }
}

}  // namespace

void drawPlots(const std::vector<Plot>& plots, PlotSurface& surface) {
  for (std::size_t i = 0; i < plots.size(); ++i) {
    const std::size_t column = i % 2;
    const std::size_t row = i / 2;
    drawPlot(plots[i], static_cast<double>(column) * kPlotWidth,
             static_cast<double>(row) * kPlotHeight, surface);
  }
}

}  // namespace KPF_TOOL

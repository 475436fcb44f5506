// Curves with axes: what a figure shows, however it is drawn.
#ifndef KPF_PLOT_H
#define KPF_PLOT_H

#include <cstddef>
#include <string>
#include <vector>

namespace KPF_TOOL {

struct PlotPoint {
  double x = 0;
  double y = 0;
};

/// A point with a word beside it: a peak.
struct PlotMark {
  PlotPoint at;
  std::string text;
};

/// One curve over one axis.
struct Plot {
  std::string title;
  std::string unitX;
  std::vector<PlotPoint> curve;  // by rising x
  std::vector<PlotMark> marks;
  std::vector<double> gaps;  // x of what is bridged, not measured
  bool fromZero = false;     // whether the axis of y begins at 0
};

/// Whatever a figure is drawn on. Coordinates count in pixels from the upper left corner.
class PlotSurface {
 public:
  /// What a line is for; each surface has its own colours.
  enum class Ink { kAxis, kCurve, kGap };

  virtual ~PlotSurface() = default;
  virtual void line(const std::vector<PlotPoint>& points, Ink ink) = 0;
  /// Text whose left end is at (x, y); letters stand above y.
  virtual void text(double x, double y, const std::string& text) = 0;
};

// The size of a figure: two plots a row.
constexpr unsigned kPlotWidth = 560;
constexpr unsigned kPlotHeight = 220;

/// Draws the plots, two a row, each kPlotWidth x kPlotHeight.
void drawPlots(const std::vector<Plot>& plots, PlotSurface& surface);

/// Rows that so many plots take.
constexpr unsigned plotRows(std::size_t plots) { return static_cast<unsigned>((plots + 1) / 2); }

}  // namespace KPF_TOOL

#endif

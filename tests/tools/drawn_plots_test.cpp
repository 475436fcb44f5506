#include "tools/kpf/plots/drawn_plots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

using namespace KPF_TOOL;

constexpr unsigned char kCurve = 220;

/// The columns, or else the rows, that have a dot of that grey.
std::vector<bool> reached(const Canvas& canvas, bool columns, unsigned char grey = kCurve) {
  std::vector<bool> found(columns ? canvas.width() : canvas.height());
  for (unsigned y = 0; y < canvas.height(); ++y) {
    for (unsigned x = 0; x < canvas.width(); ++x) {
      if (canvas.rows()[std::size_t{y} * canvas.width() + x] == grey) found[columns ? x : y] = true;
    }
  }
  return found;
}

/// How many there are in a row, from the first to the last; 0 where there is a gap.
std::size_t unbroken(const std::vector<bool>& found) {
  std::size_t first = 0, last = found.size();
  while (first < last && !found[first]) ++first;
  while (last > first && !found[last - 1]) --last;
  for (std::size_t i = first; i < last; ++i) {
    if (!found[i]) return 0;
  }
  return last - first;
}

TEST(DrawnPlots, ACurveHasNoGaps) {
  Plot plot;
  plot.curve = {{0, 0}, {1, 1}, {1.2, -1}};  // flat, then steep
  const Canvas canvas = drawnPlots({plot});
  EXPECT_GT(unbroken(reached(canvas, true)), kPlotWidth / 2);
  EXPECT_GT(unbroken(reached(canvas, false)), kPlotHeight / 2);
}

TEST(DrawnPlots, AxesGoFromTopToBottomAndAcross) {
  const Canvas canvas = drawnPlots({Plot()});
  EXPECT_GT(unbroken(reached(canvas, false, 110)), kPlotHeight / 2);
  EXPECT_GT(unbroken(reached(canvas, true, 110)), kPlotWidth / 2);
}

TEST(DrawnPlots, ACurveOfOnePointNeedsNoLine) {
  Plot plot;
  plot.curve = {{0, 0}};
  const Canvas canvas = drawnPlots({plot});
  EXPECT_EQ(unbroken(reached(canvas, true)), 0U);
}

TEST(DrawnPlots, WhatIsBridgedIsMarkedFromTopToBottom) {
  Plot plot;
  plot.curve = {{0, 0}, {1, 1}};
  plot.gaps = {0.25};
  const auto rows = reached(drawnPlots({plot}), false, 70);  // but where the curve crosses
  EXPECT_GT(std::count(rows.begin(), rows.end(), true), kPlotHeight / 2);
}

TEST(DrawnPlots, StandTwoARow) {
  EXPECT_EQ(drawnPlots({Plot(), Plot()}).height(), kPlotHeight);
  EXPECT_EQ(drawnPlots({Plot(), Plot(), Plot()}).height(), 2 * kPlotHeight);
  EXPECT_EQ(drawnPlots({Plot()}).width(), 2 * kPlotWidth);
}

}  // namespace

// What is told of the turns: figures for the table, and a picture of the calls.
#ifndef BENCH_STREAM_SUSTAINED_REPORT_H
#define BENCH_STREAM_SUSTAINED_REPORT_H

#include <string>
#include <vector>

#include "bench/stream/sustained/turn.h"

namespace BENCH {

/// The value that `share` of all do not pass; 0 of none.
double percentile(std::vector<double> values, double share);

void printUnpacedHead();
void printUnpaced(const std::string& writer, unsigned turn, const Course& course, const Plan& plan);

void printPacedHead(const Plan& plan);
void printPaced(const std::string& writer, unsigned turn, const Course& course, const Plan& plan);

struct Series {
  std::string name;
  std::vector<double> calls;  // seconds, by frame number
};

/// Draws the calls' times over the frame numbers as an SVG file, a panel for each series.
/// @param frameTime a line to compare with, in seconds.
void drawCalls(const std::string& file, const std::vector<Series>& all, double frameTime);

}  // namespace BENCH

#endif

// Where the slowest calls of the library spend their time.
#ifndef BENCH_STREAM_SUSTAINED_TRACE_H
#define BENCH_STREAM_SUSTAINED_TRACE_H

#include <string>
#include <vector>

#include "bench/stream/sustained/turn.h"

namespace BENCH {

/// The parts of one call, in seconds.
struct Stages {
  double pack = 0;   // the image into a frame record
  double write = 0;  // the record to the system
  double start = 0;  // write-back begun
  double wait = 0;   // for what lies a window behind, and its pages given back

  double sum() const { return pack + write + start + wait; }
};

/// A writer that works as the library does and notes the parts of each call in `stages`.
OpenWriter openTraced(std::vector<Stages>& stages);

/// Prints the slowest calls, and the parts of all.
void printSlowest(const std::vector<Stages>& stages, unsigned count);

/// Prints what a call costs that adds a frame of 64 x 64 pixels at 8 bits, beside the same writer
/// whose advice reaches nobody: in short recordings and in long ones.
void printSmallFrames(const std::string& parent);

}  // namespace BENCH

#endif

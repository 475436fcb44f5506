// One turn of one writer: its frames written as fast as it goes, or as a camera would bring them.
#ifndef BENCH_STREAM_SUSTAINED_TURN_H
#define BENCH_STREAM_SUSTAINED_TURN_H

#include <stdexcept>
#include <string>
#include <vector>

#include "bench/stream/sustained/writers.h"

namespace BENCH {

struct Plan {
  const Material* material = nullptr;
  unsigned frames = 0;   // of all streams together, as many of each
  unsigned streams = 1;  // which take turns
  double interval = 0;   // seconds from one frame to the next; 0: as fast as it goes
  std::string parent;    // folder to write below

  /// Seconds between two frames of the same stream.
  double frameTime() const { return interval * streams; }
  double bytes() const { return static_cast<double>(material->recordSize()) * frames; }
};

/// What a turn was like, frame by frame, in seconds.
struct Course {
  std::vector<double> calls;  // how long each call took
  std::vector<double> late;   // from when a frame was due until its call returned
  double seconds = 0;         // all of it
};

/// Thrown when the user has had enough; everything written has been removed on the way out.
struct Interrupted : std::runtime_error {
  Interrupted() : std::runtime_error("interrupted") {}
};

/// From now on SIGINT, SIGTERM and SIGHUP end a turn with Interrupted.
void listenToInterrupts();

/// Writes below a folder of its own, removes it, and waits until the disk has done what that takes.
Course takeTurn(const OpenWriter& open, const Plan& plan);

}  // namespace BENCH

#endif

// Other ways to record 12-bit video, as a user of the libraries would write them.
#ifndef BENCH_STREAM_PEERS_H
#define BENCH_STREAM_PEERS_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/support/jobs.h"

namespace BENCH {

/// Samples of one frame, 12 bits each. Left-justified for all but FFV1, which wants them below.
using Frame = std::vector<std::uint16_t>;

struct Video {
  FrameSize size;
  std::vector<Frame> frames;
};

// Each makes `file` and writes the video frame by frame, on one thread.
void recordTiff(const std::string& file, const Video& video);  // a page a frame, one strip each
void recordHdf5(const std::string& file, const Video& video);  // a chunk a frame
void recordFfv1(const std::string& file, const Video& video);  // in a Matroska file

inline void require(bool done, const char* what) {
  if (!done) throw std::runtime_error(what);
}

}  // namespace BENCH

#endif

// What the benchmarks measure: jobs on one frame, each beside memcpy moving as many bytes.
#ifndef BENCH_SUPPORT_JOBS_H
#define BENCH_SUPPORT_JOBS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace BENCH {

struct FrameSize {
  unsigned width;
  unsigned height;

  std::size_t pixels() const { return std::size_t{width} * height; }
};

inline constexpr FrameSize kFrameSizes[] = {{1280, 1024}, {1920, 1080}};

/// For growth: four times the pixels from each to the next.
inline constexpr FrameSize kGrowingSizes[] = {{640, 512}, {1280, 1024}, {2560, 2048}, {5120, 4096}};

using Bytes = std::vector<unsigned char>;

/// `size` bytes that no predictor learns, the same for the same seed.
Bytes randomBytes(std::size_t size, unsigned seed = 1);

/// How many buffers must take turns for a job that moves so many bytes, so that none is still in a
/// cache when it is used again.
std::size_t roundsFor(std::size_t bytesMoved);

/// Buffers of one size that take turns.
class BufferRing {
 public:
  /// @param bytesMoved what a round reads and writes in all its rings: the more, the fewer rounds.
  BufferRing(std::size_t size, std::size_t bytesMoved);

  unsigned char* next();

 private:
  std::vector<Bytes> buffers_;
  std::size_t at_ = 0;
};

/// Does the work of one frame.
using Job = std::function<void()>;

/**
 * Registers the benchmark `name`/WIDTHxHEIGHT and, beside it, its bound `name`/memcpy/WIDTHxHEIGHT.
 *
 * @param bytesMoved bytes that the job has to read and to write for one frame.
 * @param prepare makes the job, with its buffers, right before it is measured.
 */
void addJob(const std::string& name, FrameSize size, std::size_t bytesMoved,
            const std::function<Job()>& prepare);

/// The same without the bound, for jobs that are compared with something else.
void addLoneJob(const std::string& name, FrameSize size, std::size_t bytesMoved,
                const std::function<Job()>& prepare);

/// Does the work of one frame and says how many seconds of it count.
using TimedJob = std::function<double()>;

/// A lone job that takes the time itself, to leave out what it has to do between frames.
void addTimedJob(const std::string& name, FrameSize size, std::size_t bytesMoved,
                 const std::function<TimedJob()>& prepare);

/// Seconds that `work` takes.
double secondsOf(const std::function<void()>& work);

/// Called by `main`; every program defines it and adds its jobs there.
void addJobs();

}  // namespace BENCH

#endif

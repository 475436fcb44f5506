// The amplifier: its loops on one frame, its calls, and the whole of a frame against plain loops.
#include <omp.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "bench/motionampl/gain_shuffles.h"
#include "bench/support/jobs.h"
#include "motionampl/vx_kpf_motionampl.h"
#include "motionampl/vx_motion_kernels.h"

namespace BENCH {
namespace {

using VLM_KPF::VxKPFMotionAmpl;

constexpr double kCycles = 3.0;  // of the motion, in the window
constexpr double kGain = 2.5;

/// Frames of a window that no cache holds, as the rings of the bounds are not held either.
constexpr int kLongWindow = 60;

/// What a frame's way reads and writes, in bytes a pixel.
constexpr std::size_t kAddMoves = 10;       // newest, oldest, sums in and out
constexpr std::size_t kReferenceMoves = 5;  // sums, reference
constexpr std::size_t kAmplifyMoves = 3;    // newest, reference, amplified
constexpr std::size_t kFrameMoves = kAddMoves + kReferenceMoves + kAmplifyMoves;

/// The camera's side: a block that the amplifier frees, its content left from before.
unsigned char* newFrame(FrameSize size) {
  return static_cast<unsigned char*>(::operator new(size.pixels()));
}

/// An amplifier whose window is full of random frames. They go round once more, since the allocator
/// maps the first ones in single pieces and gives each back to the system when it leaves.
std::shared_ptr<VxKPFMotionAmpl> fullAmplifier(FrameSize size, int window) {
  auto amplifier = std::make_shared<VxKPFMotionAmpl>();
  amplifier->setParameters(window, kCycles, static_cast<int>(size.width),
                           static_cast<int>(size.height), kGain);
  const Bytes samples = randomBytes(size.pixels());
  for (int i = 0; i < 2 * window; ++i) {
    unsigned char* const frame = newFrame(size);
    std::copy(samples.begin(), samples.end(), frame);
    amplifier->addFrame(frame);
  }
  return amplifier;
}

Job addJob(FrameSize size, int window) {
  auto amplifier = fullAmplifier(size, window);
  return [=] { amplifier->addFrame(newFrame(size)); };
}

Job referenceJob(FrameSize size) {
  auto amplifier = fullAmplifier(size, 9);
  auto out = std::make_shared<BufferRing>(size.pixels(), size.pixels() * kReferenceMoves);
  return [=] { amplifier->getReference(out->next()); };
}

/// Quiet: nearly everywhere the frame is up to 15 above the reference, here and there far above.
void makeQuiet(Bytes& reference, const unsigned char* frame) {
  for (std::size_t i = 0; i < reference.size(); ++i) {
    const int above = i % 997 == 0 ? 100 : reference[i] % 16;
    reference[i] = static_cast<unsigned char>(std::max(frame[i] - above, 0));
  }
}

struct Scene {
  const char* name;
  bool quiet;
  double factor;
};

constexpr Scene kScenes[] = {
    {"quiet", true, kGain}, {"busy", false, kGain}, {"negative", false, -kGain}};

using Amplify = decltype(VLM_KPF::MotionKernels::amplify);

/// The loop alone, by a table as the amplifier makes it. The reference is in one place for every
/// frame, as the amplifier's is.
Job amplifyJob(Amplify amplify, FrameSize size, const Scene& scene) {
  const std::size_t moved = size.pixels() * kAmplifyMoves;
  auto frames = std::make_shared<BufferRing>(size.pixels(), moved);
  auto out = std::make_shared<BufferRing>(size.pixels(), moved);
  Bytes reference = randomBytes(size.pixels(), 2);
  if (scene.quiet) makeQuiet(reference, frames->next());  // the buffers of a ring begin alike
  Bytes gain(VLM_KPF::kGains);
  for (std::size_t d = 0; d < gain.size(); ++d) {
    gain[d] = static_cast<unsigned char>(static_cast<int>(static_cast<double>(d) * scene.factor));
  }
  return
      [=] { amplify(frames->next(), reference.data(), gain.data(), out->next(), size.pixels()); };
}

/// What a frame costs the caller: add it, and get it back amplified.
Job frameJob(FrameSize size, int window) {
  auto amplifier = fullAmplifier(size, window);
  auto out = std::make_shared<BufferRing>(size.pixels(), size.pixels() * kFrameMoves);
  return [=] {
    amplifier->addFrame(newFrame(size));
    amplifier->amplifyFrame(out->next());
  };
}

/// Amplifying with a team of `threads`.
Job teamJob(FrameSize size, int threads) {
  auto amplifier = fullAmplifier(size, 9);
  auto out = std::make_shared<BufferRing>(size.pixels(), size.pixels() * kFrameMoves);
  return [=] {
    omp_set_num_threads(threads);
    amplifier->amplifyFrame(out->next());
    omp_set_num_threads(1);
  };
}

/// The part of it that the team shares out: all but the reference, which one thread forms.
TimedJob sharedPartJob(FrameSize size, int threads) {
  auto amplifier = fullAmplifier(size, 9);
  auto reference = std::make_shared<Bytes>(size.pixels());
  auto out = std::make_shared<BufferRing>(size.pixels(), size.pixels() * kFrameMoves);
  return [=] {
    omp_set_num_threads(threads);
    const double whole = secondsOf([&] { amplifier->amplifyFrame(out->next()); });
    omp_set_num_threads(1);
    return whole - secondsOf([&] { amplifier->getReference(reference->data()); });
  };
}

/// The same as first written: a pass for each step, a division and a product for each pixel.
class PlainAmplifier {
 public:
  explicit PlainAmplifier(FrameSize size) : sums_(size.pixels()), reference_(size.pixels()) {}

  void frame(const unsigned char* newest, const unsigned char* oldest, unsigned char* out) {
    const std::uint32_t window = window_;
    const double factor = factor_;
    for (std::size_t i = 0; i < sums_.size(); ++i) sums_[i] -= oldest[i];
    for (std::size_t i = 0; i < sums_.size(); ++i) sums_[i] += newest[i];
    for (std::size_t i = 0; i < sums_.size(); ++i) {
      reference_[i] = static_cast<unsigned char>(sums_[i] / window);
    }
    for (std::size_t i = 0; i < sums_.size(); ++i) {
      const int difference = std::max(newest[i] - reference_[i], 0);
      const auto gain = static_cast<unsigned char>(static_cast<int>(difference * factor));
      out[i] = static_cast<unsigned char>(std::min(newest[i] + gain, 255));
    }
  }

 private:
  std::vector<std::uint32_t> sums_;
  Bytes reference_;
  volatile std::uint32_t window_ = 9;  // volatile: not known to the compiler
  volatile double factor_ = kGain;
};

Job plainFrameJob(FrameSize size) {
  auto amplifier = std::make_shared<PlainAmplifier>(size);
  auto frames = std::make_shared<BufferRing>(size.pixels(), size.pixels());
  auto out = std::make_shared<BufferRing>(size.pixels(), size.pixels() * kFrameMoves);
  return [=] { amplifier->frame(frames->next(), frames->next(), out->next()); };
}

void addAmplifyJobs(FrameSize size, const Scene& scene) {
  const std::string name = std::string("amplify-") + scene.name;
  const std::size_t moved = size.pixels() * kAmplifyMoves;
  const VLM_KPF::MotionKernels& kernels = VLM_KPF::motionKernels.inUse();
  addJob(name, size, moved, [=] { return amplifyJob(kernels.amplify, size, scene); });
#ifdef VLM_X86_KERNELS
  if (&kernels != VLM_KPF::motionKernels.of(CPU::Isa::kAvx2)) return;
  addLoneJob(name + "/shuffles", size, moved,
             [=] { return amplifyJob(amplifyByShuffles, size, scene); });
#endif
}

void addJobsOf(FrameSize size) {
  const std::size_t pixels = size.pixels();
  addJob("addFrame", size, pixels * kAddMoves, [=] { return addJob(size, kLongWindow); });
  addJob("getReference", size, pixels * kReferenceMoves, [=] { return referenceJob(size); });
  for (const Scene& scene : kScenes) addAmplifyJobs(size, scene);
  addLoneJob("amplifier", size, pixels * kFrameMoves, [=] { return frameJob(size, kLongWindow); });
  addLoneJob("amplifier/plain", size, pixels * kFrameMoves, [=] { return plainFrameJob(size); });
}

}  // namespace

void addJobs() {
  for (const FrameSize size : kFrameSizes) addJobsOf(size);
  for (const int window : {9, 900}) {
    addLoneJob("amplifier/W=" + std::to_string(window), kFrameSizes[0],
               kFrameSizes[0].pixels() * kFrameMoves,
               [=] { return frameJob(kFrameSizes[0], window); });
  }
  for (const FrameSize size : kGrowingSizes) {
    addJob("amplifier-growth", size, size.pixels() * kFrameMoves,
           [=] { return frameJob(size, 9); });
  }
  const FrameSize large{4096, 3072};
  for (const int threads : {1, 2}) {
    addLoneJob("amplifyFrame/threads=" + std::to_string(threads), large,
               large.pixels() * (kReferenceMoves + kAmplifyMoves),
               [=] { return teamJob(large, threads); });
    addTimedJob("amplifyFrame/shared/threads=" + std::to_string(threads), large,
                large.pixels() * kAmplifyMoves, [=] { return sharedPartJob(large, threads); });
  }
}

}  // namespace BENCH

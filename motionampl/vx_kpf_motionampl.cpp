#include "motionampl/vx_kpf_motionampl.h"

#include <omp.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <stdexcept>

#include "memory/vx_frame_memory.h"
#include "motionampl/vx_motion_kernels.h"
#include "vx_log.h"

namespace VLM_KPF {
namespace {

using GainTable = std::array<unsigned char, kGains>;
using VX_LOG::VxLogger;

// Below this a second thread costs more than it brings, most of all where other work holds the
// cores.
constexpr std::size_t kParallelSamples = std::size_t{64} << 10;

constinit VX_FRAME_MEMORY::SpareFrame scratch;

/// Toward zero; the smallest number for everything that 32 bits do not hold.
std::int32_t truncate(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

std::int32_t multiplyWrapping(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

/// What each of the 256 possible differences adds to its sample.
GainTable tabulateGain(double factor) {
  GainTable gain{};
  for (std::size_t difference = 0; difference < kGains; ++difference) {
    gain[difference] =
        static_cast<unsigned char>(truncate(static_cast<double>(difference) * factor));
  }
  return gain;
}

/// Shares the samples out over the team, the first threads taking one more where they do not
/// divide.
void amplifyOnTeam(const unsigned char* frame, const unsigned char* reference,
                   const GainTable& gain, unsigned char* out, std::size_t samples) {
  const auto amplify = motionKernels.inUse().amplify;
  const bool inParallel = samples >= kParallelSamples;
#pragma omp parallel default(none) \
    shared(amplify, frame, reference, gain, out, samples) if (inParallel)
  {
    const auto threads = static_cast<std::size_t>(omp_get_num_threads());
    const auto thread = static_cast<std::size_t>(omp_get_thread_num());
    const std::size_t share = samples / threads;
    const std::size_t remainder = samples % threads;
    const std::size_t first = thread * share + std::min(thread, remainder);
    amplify(frame + first, reference + first, gain.data(), out + first,
            share + (thread < remainder ? 1 : 0));
  }
}

}  // namespace

VxKPFMotionAmpl::~VxKPFMotionAmpl() { reset(); }

void VxKPFMotionAmpl::setParameters(double frameRate, double motionFrequency, std::int32_t widthIn,
                                    std::int32_t heightIn, double ampFactorIn) {
  width = widthIn;
  height = heightIn;
  ampFactor = ampFactorIn;
  const std::int32_t framesPerCycle = truncate(frameRate / motionFrequency);
  refWindowSize = framesPerCycle == 0 ? 1 : multiplyWrapping(framesPerCycle, NUM_CYCLES_REQD);

  const std::int32_t samples = samplesPerFrame();
  if (samples < 0) {
    throw std::length_error("cannot create std::vector larger than max_size()");
  }
  summer = std::make_unique<std::vector<std::uint32_t>>(static_cast<std::size_t>(samples));
  reset();
}

void VxKPFMotionAmpl::reset() {
  while (!frames.empty()) {
    unsigned char* const oldest = frames.front();
    frames.pop_front();
    ::operator delete(oldest);
  }
  heldFrames_ = 0;
  if (summer != nullptr) std::fill(summer->begin(), summer->end(), 0U);
}

void VxKPFMotionAmpl::addFrame(unsigned char* frame) {
  const std::lock_guard lock(mutex);
  if (summer == nullptr) {
    VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: unexpectedly null summer!", "addFrame");
    return;
  }
  const bool evict = !frames.empty() && windowIsFull(frames.size());
  frames.push_back(frame);  // first, as nothing behind it can fail
  if (evict) {
    unsigned char* const oldest = frames.front();
    motionKernels.inUse().exchange(summer->data(), frame, oldest, summer->size());
    frames.pop_front();
    ::operator delete(oldest);
  } else {
    motionKernels.inUse().add(summer->data(), frame, summer->size());
  }
  heldFrames_ = frames.size();
}

bool VxKPFMotionAmpl::amplifyAvailable() const { return windowIsFull(heldFrames_); }

bool VxKPFMotionAmpl::getReference(unsigned char* out) {
  const std::lock_guard lock(mutex);
  if (summer == nullptr || !windowIsFull(frames.size())) return false;
  // W, not the W - 1 frames held: the reference lies that much below their mean.
  motionKernels.inUse().divide(summer->data(), static_cast<std::uint32_t>(refWindowSize), out,
                               summer->size());
  return true;
}

bool VxKPFMotionAmpl::amplifyFrame(unsigned char* out) {
  // A negative product asks for more than there is and ends in the allocation's own exception.
  const auto size = static_cast<std::size_t>(std::int64_t{samplesPerFrame()});
  const auto reference = scratch.allocate(size);
  if (getReference(reference.get()) && amplifyNewest(reference.get(), out)) return true;
  VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: Unable to get the reference frame!",
                              "amplifyFrame");
  return false;
}

bool VxKPFMotionAmpl::amplifyNewest(const unsigned char* reference, unsigned char* out) {
  const std::lock_guard lock(mutex);
  if (frames.empty()) return false;  // a window of no frames is full when W is 1
  const double factor = std::atomic_ref(ampFactor).load(std::memory_order_relaxed);
  amplifyOnTeam(frames.back(), reference, tabulateGain(factor), out,
                static_cast<std::size_t>(samplesPerFrame()));
  return true;
}

unsigned char VxKPFMotionAmpl::minus_floor(const unsigned char& a, const unsigned char& b) {
  return static_cast<unsigned char>(a >= b ? a - b : 0);
}

unsigned char VxKPFMotionAmpl::plus_clip(const unsigned char& a, const unsigned char& b) {
  return static_cast<unsigned char>(std::min(a + b, 255));
}

std::int32_t VxKPFMotionAmpl::samplesPerFrame() const { return multiplyWrapping(width, height); }

bool VxKPFMotionAmpl::windowIsFull(std::size_t held) const {
  return refWindowSize >= 1 && held >= static_cast<std::size_t>(refWindowSize - 1);
}

}  // namespace VLM_KPF

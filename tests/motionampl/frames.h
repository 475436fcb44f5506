// Frames as the amplifier takes them over.
#ifndef TESTS_MOTIONAMPL_FRAMES_H
#define TESTS_MOTIONAMPL_FRAMES_H

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

#include "motionampl/vx_kpf_motionampl.h"

namespace TEST_MOTIONAMPL {

using Samples = std::vector<unsigned char>;

/// A copy of `samples` in a block that an amplifier may free.
inline unsigned char* newFrame(const Samples& samples) {
  auto* const frame = static_cast<unsigned char*>(::operator new(samples.size()));
  std::copy(samples.begin(), samples.end(), frame);
  return frame;
}

inline void add(VLM_KPF::VxKPFMotionAmpl& amplifier, const Samples& samples) {
  amplifier.addFrame(newFrame(samples));
}

/// The reference, or nothing where there is none.
inline Samples referenceOf(VLM_KPF::VxKPFMotionAmpl& amplifier, std::size_t samples) {
  Samples out(samples);
  return amplifier.getReference(out.data()) ? out : Samples{};
}

/// The amplified frame, or nothing where there is none.
inline Samples amplifiedBy(VLM_KPF::VxKPFMotionAmpl& amplifier, std::size_t samples) {
  Samples out(samples);
  return amplifier.amplifyFrame(out.data()) ? out : Samples{};
}

}  // namespace TEST_MOTIONAMPL

#endif

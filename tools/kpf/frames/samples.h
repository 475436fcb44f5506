// The two forms in which grey samples travel through the tool.
#ifndef KPF_SAMPLES_H
#define KPF_SAMPLES_H

#include <cstddef>

namespace KPF_TOOL {

/// Left-justified, so that the first byte of 8 bits is the high byte of 16 and nothing is rescaled
/// on the way from one to the other.
enum class Samples {
  k8Bit,  // a byte a sample
  k16Bit  // two bytes, little-endian, left-justified
};

/// Bytes of one sample.
constexpr std::size_t bytesOf(Samples samples) { return samples == Samples::k8Bit ? 1 : 2; }

}  // namespace KPF_TOOL

#endif

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

/// Grey levels, of which 8 bits have 256, in the last place of a 16-bit sample.
constexpr float kLevelOf16 = 1 / 256.F;

/// Bytes of one sample.
constexpr std::size_t bytesOf(Samples samples) { return samples == Samples::k8Bit ? 1 : 2; }

/// Bytes from row to row as the library takes images: rows are padded to a multiple of four.
constexpr std::size_t paddedRow(std::size_t rowBytes) { return (rowBytes + 3) / 4 * 4; }

}  // namespace KPF_TOOL

#endif

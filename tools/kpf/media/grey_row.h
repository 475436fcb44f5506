// Grey samples of any depth, brought into the tool's forms.
#ifndef KPF_GREY_ROW_H
#define KPF_GREY_ROW_H

#include <cstddef>

#include "tools/kpf/frames/samples.h"

namespace KPF_TOOL {

/// Writes one row of `bits`-bit samples, 8 to 16, as left-justified ones. Samples of more than 8
/// bits lie in two bytes, little-endian, in their lower bits; of those that `samples` cannot hold
/// the lower bits go.
void copyGreyRow(const unsigned char* in, int bits, unsigned char* out, Samples samples,
                 std::size_t width);

}  // namespace KPF_TOOL

#endif

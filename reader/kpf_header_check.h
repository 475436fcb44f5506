// The bytes of a header file that can only be one way.
#ifndef KPF_HEADER_CHECK_H
#define KPF_HEADER_CHECK_H

#include <span>
#include <vector>

#include "reader/kpf_reader.h"

namespace KPF_READER {

/// @param image a header image that parseHeader took. By rising offset, but for the last ones.
std::vector<HeaderDeviation> findDeviations(std::span<const unsigned char> image);

}  // namespace KPF_READER

#endif

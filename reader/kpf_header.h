// From the bytes of a header file to its fields.
#ifndef KPF_HEADER_H
#define KPF_HEADER_H

#include <span>
#include <string>

#include "reader/kpf_reader.h"

namespace KPF_READER {

/// @param path named in errors. @throws RecordingError at the first field that rules out reading
/// on.
Header parseHeader(std::span<const unsigned char> image, const std::string& path);

}  // namespace KPF_READER

#endif

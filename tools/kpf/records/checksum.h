// The checksum of a frame record.
#ifndef KPF_CHECKSUM_H
#define KPF_CHECKSUM_H

#include <cstdint>
#include <span>

namespace KPF_TOOL {

/// XXH3 of 64 bits over the whole record, its header included.
std::uint64_t checksumOf(std::span<const unsigned char> record);

}  // namespace KPF_TOOL

#endif

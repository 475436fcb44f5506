#include "tools/kpf/records/checksum.h"

// The functions themselves, so that no library need be shipped beside the tool.
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace KPF_TOOL {

std::uint64_t checksumOf(std::span<const unsigned char> record) {
  return XXH3_64bits(record.data(), record.size());
}

}  // namespace KPF_TOOL

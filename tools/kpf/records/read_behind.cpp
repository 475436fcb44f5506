#include "tools/kpf/records/read_behind.h"

#include <algorithm>

namespace KPF_TOOL {
namespace {

// As the writer's, see stream/write_behind.h: the system keeps a file in pieces of up to some MiB.
constexpr std::uint64_t kChunk = std::uint64_t{8} << 20;
constexpr std::uint64_t kKept = 4 * kChunk;
// The system reads ahead of whoever walks, by up to 8 MiB on some machines, and counts as the walk.
constexpr std::uint64_t kAhead = 2 * kChunk;

}  // namespace

void ReadBehind::reading(const CachedFile& file, std::uint64_t offset, std::uint64_t size,
                         std::uint64_t fileSize) {
  const std::uint64_t end = std::min(offset + size + kAhead, fileSize);
  entered_ = std::max(entered_, offset / kChunk);
  for (; entered_ * kChunk < end; ++entered_) {
    const std::uint64_t last = std::min((entered_ + 1) * kChunk, fileSize) - 1;
    if (!file.isCached(last)) brought_.push_back(entered_);
  }
  for (; !brought_.empty(); brought_.pop_front()) {
    const std::uint64_t chunkEnd = (brought_.front() + 1) * kChunk;
    if (chunkEnd + kKept > offset) break;
    file.forget(chunkEnd - kChunk, chunkEnd);
  }
}

}  // namespace KPF_TOOL

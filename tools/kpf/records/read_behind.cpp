#include "tools/kpf/records/read_behind.h"

#include <algorithm>
#include <cstddef>

namespace KPF_TOOL {
namespace {

// As the writer's, see stream/write_behind.h: the system keeps a file in pieces of up to some MiB.
constexpr std::uint64_t kChunk = std::uint64_t{8} << 20;
constexpr std::size_t kKeptChunks = 4;

}  // namespace

void ReadBehind::reading(const CachedFile& file, std::uint64_t offset, std::uint64_t size,
                         std::uint64_t fileSize) {
  const std::uint64_t end = std::min(offset + size, fileSize);
  entered_ = std::max(entered_, offset / kChunk);
  for (; entered_ * kChunk < end; ++entered_) {
    // Its last byte: the system has read ahead, so that its first ones may be there already.
    if (file.isCached(std::min((entered_ + 1) * kChunk, fileSize) - 1)) continue;
    brought_.push_back(entered_);
    if (brought_.size() <= kKeptChunks) continue;
    file.forget(brought_.front() * kChunk, (brought_.front() + 1) * kChunk);
    brought_.pop_front();
  }
}

}  // namespace KPF_TOOL

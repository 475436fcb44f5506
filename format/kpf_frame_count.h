// The frame count of a header file that is already written.
#ifndef KPF_FRAME_COUNT_H
#define KPF_FRAME_COUNT_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>

#include "format/kpf_layout.h"

namespace KPF_FORMAT {

/// Announced by a recorder that cannot know the count: more than any recording holds, so that one
/// that was never closed reads as cut short.
inline constexpr std::uint32_t kFrameCountUnknown = std::numeric_limits<std::uint32_t>::max();

/**
 * Sets the frames announced in `headerFile` to those that were recorded, and touches no other byte.
 *
 * Inline: programs that record through the shared library have no other way to it.
 *
 * @return false when the file cannot be opened or written.
 */
inline bool writeFrameCount(const std::filesystem::path& headerFile, std::uint32_t count) {
  unsigned char bytes[HEADER::kFrameCount.size];
  store(bytes, {0, sizeof bytes}, count);
  // With `in`, which keeps what is there; `out` alone would cut the file.
  std::ofstream file(headerFile, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(HEADER::kFrameCount.offset));
  file.write(reinterpret_cast<const char*>(bytes), sizeof bytes);
  file.close();
  return file.good();
}

}  // namespace KPF_FORMAT

#endif

// How much of a file the page cache holds.
#ifndef TESTS_SUPPORT_CACHED_PAGES_H
#define TESTS_SUPPORT_CACHED_PAGES_H

#include <cstdint>
#include <filesystem>

namespace TEST_SUPPORT {

/// Bytes of `file` that lie in memory.
std::uintmax_t cachedBytes(const std::filesystem::path& file);

/// The same of all files below `folder`.
std::uintmax_t cachedBytesBelow(const std::filesystem::path& folder);

/// Whether the file system of `folder` gives pages back when it is asked to: one in memory does
/// not.
bool givesPagesBack(const std::filesystem::path& folder);

}  // namespace TEST_SUPPORT

#endif

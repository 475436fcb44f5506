// Bringing files to the disk itself, past every cache of the operating system.
#ifndef CAPI_DURABLE_H
#define CAPI_DURABLE_H

#include <filesystem>

namespace KPF_C {

/// Waits until the bytes of a file are on the disk. @return false when that cannot be had.
bool syncFile(const std::filesystem::path& file) noexcept;

/// The same for the names in a folder. On Windows, which offers no such call and keeps them in its
/// journal, nothing is done.
bool syncFolder(const std::filesystem::path& folder) noexcept;

}  // namespace KPF_C

#endif

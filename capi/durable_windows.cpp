#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <filesystem>

#include "capi/durable.h"

namespace KPF_C {

bool syncFile(const std::filesystem::path& file) noexcept {
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  const bool synced = FlushFileBuffers(handle) != 0;
  return CloseHandle(handle) != 0 && synced;
}

bool syncFolder(const std::filesystem::path&) noexcept { return true; }

}  // namespace KPF_C

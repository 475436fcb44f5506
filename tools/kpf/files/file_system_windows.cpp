#define WIN32_LEAN_AND_MEAN
#include <io.h>
#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

#include "paths/native_path.h"
#include "tools/kpf/files/file_system.h"

namespace KPF_TOOL {
namespace {

constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::optional<FileId> idOf(HANDLE file) {
  BY_HANDLE_FILE_INFORMATION known{};
  if (GetFileInformationByHandle(file, &known) == 0) return std::nullopt;
  const auto high = static_cast<std::uint64_t>(known.nFileIndexHigh);
  return FileId{known.dwVolumeSerialNumber, high << 32 | known.nFileIndexLow};
}

std::error_code lastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

}  // namespace

// No right is asked for, so that files which may not be read are known, too.
std::optional<FileId> fileId(const std::string& name) {
  const HANDLE file = CreateFileW(PATHS::nativePath(name).c_str(), 0, kShared, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  const auto id = idOf(file);
  CloseHandle(file);
  return id;
}

std::optional<FileId> fileId(int descriptor) {
  const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  if (file == INVALID_HANDLE_VALUE || GetFileType(file) != FILE_TYPE_DISK) return std::nullopt;
  return idOf(file);
}

std::error_code makeNewFile(const std::string& name) {
  const HANDLE file = CreateFileW(PATHS::nativePath(name).c_str(), GENERIC_WRITE, 0, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return lastError();
  CloseHandle(file);
  return {};
}

std::error_code moveWhereFree(const std::string& from, const std::string& to) {
  const bool moved =
      MoveFileExW(PATHS::nativePath(from).c_str(), PATHS::nativePath(to).c_str(), 0) != 0;
  return moved ? std::error_code() : lastError();
}

// Files that are being written cannot be removed here.
FolderLock::FolderLock(const std::string&) {}
FolderLock::~FolderLock() = default;

}  // namespace KPF_TOOL

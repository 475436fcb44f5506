#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>

#include "paths/native_path.h"
#include "reader/mapped_file.h"

namespace KPF_READER {
namespace {

[[noreturn]] void fail(const std::string& path) {
  const auto code = static_cast<int>(GetLastError());
  throw RecordingError(path, 0, std::system_category().message(code));
}

/// A handle that is closed on every way out; a view outlives it.
class Handle {
 public:
  Handle(HANDLE handle, const std::string& path) : handle_(handle) {
    if (handle_ == INVALID_HANDLE_VALUE || handle_ == nullptr) fail(path);
  }
  ~Handle() { CloseHandle(handle_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

HANDLE openForReading(const std::string& path, Access access) {
  const DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const DWORD hint =
      access == Access::kSequential ? FILE_FLAG_SEQUENTIAL_SCAN : FILE_FLAG_RANDOM_ACCESS;
  return CreateFileW(PATHS::nativePath(path).c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING,
                     hint, nullptr);
}

std::size_t sizeOf(const Handle& file, const std::string& path) {
  if (GetFileType(file.get()) != FILE_TYPE_DISK) throw RecordingError(path, 0, "not a file");
  LARGE_INTEGER size{};
  if (GetFileSizeEx(file.get(), &size) == 0) fail(path);
  const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
  if (bytes > std::numeric_limits<std::size_t>::max()) throw RecordingError(path, 0, "too large");
  return static_cast<std::size_t>(bytes);
}

}  // namespace

MappedFile::MappedFile(const std::string& path, Access access) {
  const Handle file(openForReading(path, access), path);
  size_ = sizeOf(file, path);
  if (size_ == 0) return;
  const Handle mapping(CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr), path);
  const void* const view = MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, size_);
  if (view == nullptr) fail(path);
  data_ = static_cast<const unsigned char*>(view);
}

MappedFile::~MappedFile() {
  if (data_ != nullptr) UnmapViewOfFile(data_);
}

}  // namespace KPF_READER

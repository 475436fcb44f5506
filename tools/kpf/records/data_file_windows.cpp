#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <system_error>

#include "kpf_reader.h"
#include "paths/native_path.h"
#include "tools/kpf/records/data_file.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;  // bytes; a call counts them in 32 bits

[[noreturn]] void fail(const std::string& path, std::uint64_t offset, DWORD code) {
  throw KPF_READER::RecordingError(path, offset,
                                   std::system_category().message(static_cast<int>(code)));
}

}  // namespace

DataFile::DataFile(const std::string& path)
    : path_(path),
      handle_(CreateFileW(PATHS::nativePath(path).c_str(), GENERIC_READ,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          OPEN_EXISTING, 0, nullptr)) {
  if (handle_ == INVALID_HANDLE_VALUE) fail(path_, 0, GetLastError());
}

DataFile::~DataFile() { CloseHandle(handle_); }

std::size_t DataFile::read(std::uint64_t offset, std::span<unsigned char> into) const {
  std::size_t done = 0;
  while (done < into.size()) {
    const std::uint64_t at = offset + done;
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(at);
    place.OffsetHigh = static_cast<DWORD>(at >> 32);
    const auto wanted = static_cast<DWORD>(std::min(into.size() - done, kMostAtOnce));
    DWORD got = 0;
    if (ReadFile(handle_, into.data() + done, wanted, &got, &place) == 0) {
      const DWORD code = GetLastError();
      if (done == 0 && code != ERROR_HANDLE_EOF) fail(path_, offset, code);
      break;
    }
    if (got == 0) break;
    done += got;
  }
  return done;
}

std::uint64_t DataFile::storedFrom(std::uint64_t offset) const { return offset; }

// Windows gives a program no say in this.
bool DataFile::isCached(std::uint64_t /*offset*/) const { return true; }

void DataFile::forget(std::uint64_t /*begin*/, std::uint64_t /*end*/) const {}

}  // namespace KPF_TOOL

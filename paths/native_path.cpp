#include "paths/native_path.h"

#include <cstddef>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace PATHS {

#ifdef _WIN32

namespace {

/// `name` in UTF-16, or nothing where its bytes are not text in that code page.
std::wstring decode(const std::string& name, UINT codePage, DWORD flags) {
  const int size = static_cast<int>(name.size());
  const int needed = MultiByteToWideChar(codePage, flags, name.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(codePage, flags, name.data(), size, wide.data(), needed);
  return wide;
}

}  // namespace

// The C++ library would take the bytes of a path for Latin-1, and those of a stream's own name for
// the code page.
std::filesystem::path nativePath(const std::string& name) {
  const std::wstring unicode = decode(name, CP_UTF8, MB_ERR_INVALID_CHARS);
  return unicode.empty() ? decode(name, CP_ACP, 0) : unicode;
}

#else

std::filesystem::path nativePath(const std::string& name) { return name; }

#endif

}  // namespace PATHS

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

#include "capi/durable.h"

namespace KPF_C {
namespace {

bool sync(const std::filesystem::path& path, int flags) noexcept {
  const int descriptor = open(path.c_str(), flags | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool synced = fsync(descriptor) == 0;
  return close(descriptor) == 0 && synced;
}

}  // namespace

bool syncFile(const std::filesystem::path& file) noexcept { return sync(file, O_RDONLY); }

bool syncFolder(const std::filesystem::path& folder) noexcept {
  return sync(folder, O_RDONLY | O_DIRECTORY);
}

}  // namespace KPF_C

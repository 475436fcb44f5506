#include "tools/kpf/recording/trial_folder.h"

#include <fmt/format.h>

#include <filesystem>
#include <random>
#include <system_error>

#include "format/kpf_sizes.h"
#include "paths/native_path.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
using PATHS::nativePath;

TrialFolder::TrialFolder(const std::string& parent)
    : path_(
          (nativePath(parent) / fmt::format("kpf-speed-{:08x}", std::random_device()())).string()) {
  std::error_code failure;
  if (!fs::is_directory(nativePath(parent), failure)) {
    throw ToolError(Outcome::kUnreadableInput, fmt::format("{} is no folder", escaped(parent)),
                    "Name a folder on the disk that is to be tried.");
  }
  if (fs::create_directory(nativePath(path_), failure)) return;
  throw ToolError(Outcome::kRefused,
                  fmt::format("nothing can be written to {}: {}", escaped(parent),
                              failure ? failure.message() : "the name is taken"),
                  "Name a folder that you may write to.");
}

std::uint64_t TrialFolder::room() const {
  std::error_code unknown;
  const fs::space_info space = fs::space(nativePath(path_).parent_path(), unknown);
  return unknown ? 0 : space.available;
}

// What the disk has not taken yet it need not take any more: nothing is waited for.
void TrialFolder::clear() const {
  std::error_code ignored;
  fs::remove_all(nativePath(path_), ignored);
}

std::uint64_t recordBytes(unsigned width, unsigned height, int bits) {
  const bool packed12 = KPF_FORMAT::isPacked12(static_cast<unsigned>(bits));
  const std::uint64_t pixels = std::uint64_t{width} * height;
  const std::uint64_t bytes = KPF_FORMAT::recordSizeOf(KPF_FORMAT::packedSizeOf(pixels, packed12));
  if (bytes <= KPF_FORMAT::kLargestDivFile) return bytes;
  throw ToolError(Outcome::kWrongUsage,
                  fmt::format("a frame of {}x{} pixels fits no data file", width, height),
                  "Try smaller frames with --size.");
}

}  // namespace KPF_TOOL

// The images that a pattern like frame_%04d.png stands for.
#ifndef KPF_IMAGE_NUMBERS_H
#define KPF_IMAGE_NUMBERS_H

#include <cstdint>
#include <optional>
#include <string>

namespace KPF_TOOL {

/// The lowest and the highest number for which there is a file.
struct ImageNumbers {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
};

/// Looks into the folder; nothing when the name has no %d, or no file fits.
std::optional<ImageNumbers> imageNumbers(const std::string& pattern);

/// Whether a name has a place for a number: `%d`, `%4d`, `%04d`.
bool isImagePattern(const std::string& name);

}  // namespace KPF_TOOL

#endif

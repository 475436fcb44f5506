// Images that a command makes, a file each.
#ifndef KPF_IMAGE_FILES_H
#define KPF_IMAGE_FILES_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/kpf/files/image_pattern.h"
#include "tools/kpf/files/new_file.h"

namespace KPF_TOOL {

/// One file for each image, under the names of a pattern, or a single one.
class ImageFiles {
 public:
  /// @param firstNumber of the first image. @param images to come; nothing where nobody knows.
  /// @throws ToolError when they do not fit the name, or one of their names is taken: before the
  ///         first image is made, as nobody wants half of them.
  ImageFiles(const Destination& destination, std::uint64_t firstNumber,
             std::optional<std::uint64_t> images);

  /// Makes the next image of the bytes of a whole file. @throws ToolError.
  void add(std::span<const unsigned char> file);

  /// The next number goes without an image.
  void pass() { ++number_; }

  /// Gives a single image its name, for which it waits: there may be a second one, which has none.
  void finish();

 private:
  void checkAllFree(std::optional<std::uint64_t> images) const;

  const Destination destination_;
  const std::optional<ImagePattern> pattern_;
  std::uint64_t number_;          // of the next image
  std::optional<NewFile> image_;  // the one that has no name yet
};

}  // namespace KPF_TOOL

#endif

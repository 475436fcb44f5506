// Names of numbered images.
#ifndef KPF_IMAGE_PATTERN_H
#define KPF_IMAGE_PATTERN_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// A name with one number in it, of at least so many digits: frame_%06d.png.
class ImagePattern {
 public:
  /// Nothing when the name has no such place, or more than one. `%d` and `%6d` are places too.
  /// @param name its folders are taken as they are, whatever signs stand in them.
  static std::optional<ImagePattern> parse(const std::string& name);

  /// Whether the number is padded with zeros, so that the names sort by it: `%06d`.
  bool isPadded() const { return padded_; }

  /// The name of image `number`.
  std::string nameOf(std::uint64_t number) const;

  /// The numbers of the images that are there, in no order; none in a folder that cannot be read.
  std::vector<std::uint64_t> numbersThere() const;

  /// The pattern for programs that look for a number in the folders' names too, where `%%` is a
  /// `%`.
  std::string withFoldersEscaped() const;

  struct Range {
    std::uint64_t first;
    std::uint64_t last;
  };
  /// The lowest and the highest of them; nothing where there is none.
  std::optional<Range> rangeThere() const;

 private:
  std::optional<std::uint64_t> numberIn(const std::string& fileName) const;

  std::string folder_;  // with the last slash; empty for the current one
  std::string file_;    // behind it, as it was written
  std::string before_;
  std::size_t digits_ = 0;  // at least
  bool padded_ = false;
  std::string behind_;
};

/// Whether the file's name has a `%`, so that somebody meant it to be a pattern.
bool hasPercent(const std::string& name);

}  // namespace KPF_TOOL

#endif

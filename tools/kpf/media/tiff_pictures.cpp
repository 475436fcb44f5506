#include "tools/kpf/media/tiff_pictures.h"

#include <algorithm>
#include <cstddef>

namespace KPF_TOOL {
namespace {

// A directory: how many entries, the entries, where the next one is.
constexpr std::size_t kCount = 2, kEntry = 12, kValue = 8;
constexpr unsigned kMagic = 42;
constexpr unsigned kKindOfPicture = 254;  // a tag; of its bits:
constexpr unsigned kSmallerCopy = 1, kMask = 4;

class TiffFile {
 public:
  explicit TiffFile(std::span<const unsigned char> bytes)
      : bytes_(bytes), littleEndian_(!bytes.empty() && bytes[0] == 'I') {}

  /// 0 behind the end.
  std::size_t number(std::size_t at, std::size_t size) const {
    if (at > bytes_.size() || size > bytes_.size() - at) return 0;
    std::size_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = value << 8 | bytes_[at + (littleEndian_ ? size - 1 - i : i)];
    }
    return value;
  }

  bool isPicture(std::size_t directory, std::size_t entries) const {
    for (std::size_t i = 0; i < entries; ++i) {
      const std::size_t entry = directory + kCount + i * kEntry;
      if (number(entry, 2) != kKindOfPicture) continue;
      return (number(entry + kValue, 4) & (kSmallerCopy | kMask)) == 0;
    }
    return true;
  }

 private:
  std::span<const unsigned char> bytes_;
  bool littleEndian_;
};

}  // namespace

std::uint64_t tiffPictures(std::span<const unsigned char> file) {
  const TiffFile tiff(file);
  if (tiff.number(2, 2) != kMagic) return 0;
  std::uint64_t pictures = 0;
  // Directories that lead in a circle come to an end with the entries that the file has room for.
  std::size_t room = file.size() / kEntry;
  for (std::size_t at = tiff.number(4, 4); at != 0 && room > 0;) {
    const std::size_t entries = tiff.number(at, kCount);
    if (entries == 0) break;
    if (tiff.isPicture(at, entries)) ++pictures;
    room -= std::min(room, entries);
    at = tiff.number(at + kCount + entries * kEntry, 4);
  }
  return pictures;
}

}  // namespace KPF_TOOL

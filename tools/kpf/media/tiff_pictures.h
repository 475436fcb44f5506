// TIFF files of several pictures.
#ifndef KPF_TIFF_PICTURES_H
#define KPF_TIFF_PICTURES_H

#include <cstdint>
#include <span>

namespace KPF_TOOL {

/// How many pictures a TIFF file holds, of which FFmpeg decodes the first without a word. Smaller
/// copies and masks of a picture are none. 0 for what is no TIFF.
std::uint64_t tiffPictures(std::span<const unsigned char> file);

}  // namespace KPF_TOOL

#endif

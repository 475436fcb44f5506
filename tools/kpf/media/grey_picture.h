// Pictures of whatever pixel format, turned into grey.
#ifndef KPF_GREY_PICTURE_H
#define KPF_GREY_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/kpf/frames/samples.h"
#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {

/**
 * Writes the grey of one picture after the other, each by its own pixel format and range.
 *
 * Grey stays as it is. Of video the luma is the grey: as it is where the range is full, else
 * stretched from 16..235 to all values of its depth. Red, green and blue are weighed as in BT.601;
 * where they are equal they are the grey.
 */
class GreyPicture {
 public:
  /// Writes the rows of `picture`, `stride` bytes apart.
  /// @return false when its pixel format cannot be turned into grey.
  bool copy(const AVFrame& picture, unsigned char* out, std::size_t stride, Samples samples);

 private:
  bool openRow(const AVFrame& picture);
  void readLuma(const AVFrame& picture, int y);
  void readColour(const AVFrame& picture, int y);
  void readPalette(const AVFrame& picture, int y);
  void readComponent(const AVFrame& picture, int component, int y);
  const AVFrame* scaled(const AVFrame& picture);

  std::vector<std::uint16_t> row_;        // left-justified grey
  std::vector<std::uint16_t> values_;     // one component of a row, as it is stored
  std::vector<std::uint32_t> weighed_;    // red, green and blue so far
  std::vector<std::uint16_t> stretched_;  // luma -> left-justified grey
  int depth_ = 0;                         // of the luma that stretched_ is made for
  bool full_ = false;                     // and its range
  ScalerPtr scaler_;                      // for what is none of these
  FramePtr scaledPicture_;
};

}  // namespace KPF_TOOL

#endif

// Frames as the analysis sees them: grey levels in a box.
#ifndef KPF_PICTURE_H
#define KPF_PICTURE_H

#include <cstddef>
#include <span>

#include "tools/kpf/frames/samples.h"

namespace KPF_TOOL {

/// How the bytes of a frame are to be read: rows without gaps, from the top.
struct PictureLayout {
  unsigned width = 0;
  unsigned height = 0;
  Samples samples = Samples::k8Bit;

  std::size_t pixelCount() const { return std::size_t{width} * height; }
  std::size_t frameSize() const { return pixelCount() * bytesOf(samples); }
};

/// A rectangle of pixels; (x, y) is its upper left one.
struct Box {
  unsigned x = 0;
  unsigned y = 0;
  unsigned width = 0;
  unsigned height = 0;

  std::size_t pixelCount() const { return std::size_t{width} * height; }
  bool operator==(const Box&) const = default;
};

/// Whether `box` holds a pixel, and none outside the picture.
bool isInside(const Box& box, const PictureLayout& layout);

/// What a point stands for: the 15 x 15 pixels around it, as far as the picture goes. One pixel has
/// no gradient, and its noise would drown a small movement.
Box boxAround(unsigned x, unsigned y, const PictureLayout& layout);

/// `box` with `margin` more pixels on every side, as far as the picture goes.
Box grown(const Box& box, unsigned margin, const PictureLayout& layout);

/**
 * The grey levels of a box, row by row: 0 to 255 whatever the samples, so that results of 8 and of
 * 12 bits can be compared; 16-bit samples keep their fractions.
 *
 * @param frame a frame of this layout, which `box` lies inside.
 * @param levels receives box.pixelCount() of them.
 */
void copyLevels(const unsigned char* frame, const PictureLayout& layout, const Box& box,
                std::span<float> levels);

/// Their mean.
double meanLevel(const unsigned char* frame, const PictureLayout& layout, const Box& box);

}  // namespace KPF_TOOL

#endif

// Pictures in the form in which a screen shows them.
#ifndef KPF_SCREEN_PICTURE_H
#define KPF_SCREEN_PICTURE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// What is dark, what is bright, and how grey goes from one to the other.
class Tone {
 public:
  /// @param low, high of 4095: shown black and white. @param gamma above 1 lifts the dark parts.
  Tone(double low, double high, double gamma);

  /// @param sample 16 bits, left-justified.
  unsigned char of(unsigned sample) const { return table_[sample >> 4]; }

 private:
  std::array<unsigned char, 4096> table_;
};

/// A part of the picture, and the size at which it is wanted: no larger than it is.
struct Cutout {
  unsigned left = 0, top = 0, width = 0, height = 0;
  unsigned outWidth = 0, outHeight = 0;
};

/// Clipped to the picture, and to a size that it has. @param text "left,top,width,height,out
/// width,out height"; empty for all. @throws ToolError.
Cutout cutoutOf(const std::string& text, unsigned width, unsigned height);

/// The mean of the samples behind each pixel of the screen, in its tone. Left out samples would
/// make stripes of fine patterns. @param samples rows of `width`, left-justified.
void appendShown(std::vector<unsigned char>& out, std::span<const std::uint16_t> samples,
                 std::size_t width, const Cutout& cutout, const Tone& tone);
void appendShown(std::vector<unsigned char>& out, std::span<const unsigned char> samples,
                 std::size_t width, const Cutout& cutout, const Tone& tone);

/// The largest value behind each pixel of the screen: marks stay visible however small they are.
void appendMarks(std::vector<unsigned char>& out, std::span<const unsigned char> marks,
                 std::size_t width, const Cutout& cutout);

}  // namespace KPF_TOOL

#endif

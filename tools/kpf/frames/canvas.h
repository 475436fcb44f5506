// A grey picture with other pictures and captions on it.
#ifndef KPF_CANVAS_H
#define KPF_CANVAS_H

#include <string>
#include <vector>

namespace KPF_TOOL {

/// A picture of 8-bit samples to draw on. Its letters are its own: a few captions need no library.
class Canvas {
 public:
  static constexpr unsigned kCaptionHeight = 28;  // pixels, for one line of text
  static constexpr unsigned kCaptionMargin = 7;   // pixels around that line

  /// All black.
  Canvas(unsigned width, unsigned height);

  /// Copies a picture of `w` x `h` samples to (x, y), where it must fit.
  void place(const unsigned char* picture, unsigned w, unsigned h, unsigned x, unsigned y);

  /// Writes capital letters, digits and a few signs, white, at (x, y); what is none of these is a
  /// blank. Cut at the right edge; below, there must be room.
  void write(const std::string& text, unsigned x, unsigned y);

  /// Sets one pixel; outside the picture none.
  void dot(unsigned x, unsigned y, unsigned char grey);

  unsigned width() const { return width_; }
  unsigned height() const { return height_; }
  /// width() x height() samples, row by row from the top.
  const unsigned char* rows() const { return pixels_.data(); }

 private:
  unsigned width_;
  unsigned height_;
  std::vector<unsigned char> pixels_;
};

}  // namespace KPF_TOOL

#endif

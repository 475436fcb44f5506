// A grey picture with other pictures and captions on it.
#ifndef CANVAS_H
#define CANVAS_H

#include <string>
#include <vector>

namespace KPF_TOOL {

class Canvas {
 public:
  static constexpr unsigned kCaptionHeight = 28;  // pixels, for one line of text

  /// All black.
  Canvas(unsigned width, unsigned height);

  /// Copies a picture of `w` x `h` samples to (x, y), where it must fit.
  void place(const unsigned char* picture, unsigned w, unsigned h, unsigned x, unsigned y);

  /// Writes capital letters, digits and a few signs, white, cut at the right edge.
  void write(const std::string& text, unsigned x, unsigned y);

  unsigned width() const { return width_; }
  unsigned height() const { return height_; }
  const unsigned char* rows() const { return pixels_.data(); }

 private:
  unsigned width_;
  unsigned height_;
  std::vector<unsigned char> pixels_;
};

}  // namespace KPF_TOOL

#endif

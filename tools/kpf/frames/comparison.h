// Pictures side by side.
#ifndef KPF_COMPARISON_H
#define KPF_COMPARISON_H

#include <array>
#include <string>

#include "tools/kpf/frames/canvas.h"

namespace KPF_TOOL {

/// Three pictures of one size in a row, each under its caption.
class Comparison {
 public:
  static constexpr unsigned kGap = 8;  // black pixels between the pictures

  Comparison(unsigned width, unsigned height, const std::array<std::string, 3>& captions);

  unsigned width() const { return canvas_.width(); }
  unsigned height() const { return canvas_.height(); }

  /// Draws the pictures over those before. @return the rows, valid until the next call.
  const unsigned char* of(const std::array<const unsigned char*, 3>& pictures);

 private:
  unsigned width_;   // of one picture
  unsigned height_;  // of one picture
  Canvas canvas_;    // the captions are drawn once and stay
};

}  // namespace KPF_TOOL

#endif

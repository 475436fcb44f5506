// What a box looks like on average, and how much it changes.
#ifndef KPF_MEAN_PICTURE_H
#define KPF_MEAN_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/kpf/analysis/picture.h"

namespace KPF_TOOL {

/// The mean of many frames has next to no noise, and stands where the motion has its middle: what
/// displacement is best measured against. Lost frames are not added.
class MeanPicture {
 public:
  MeanPicture(const PictureLayout& layout, const Box& box);

  void add(const unsigned char* frame);

  const PictureLayout& layout() const { return layout_; }
  const Box& box() const { return box_; }
  std::uint64_t frames() const { return frames_; }

  /// The mean levels, row by row; all 0 before the first frame.
  std::vector<float> levels() const;

  /// By how much a pixel varies with time, in squared grey levels, on average over the box.
  double variance() const;

 private:
  PictureLayout layout_;
  Box box_;
  std::uint64_t frames_ = 0;
  std::vector<float> present_;
  std::vector<double> sums_;
  std::vector<double> squares_;
};

}  // namespace KPF_TOOL

#endif

// How far the contents of a box move, in pixels.
#ifndef KPF_DISPLACEMENT_H
#define KPF_DISPLACEMENT_H

#include <vector>

#include "tools/kpf/analysis/mean_picture.h"
#include "tools/kpf/analysis/waveform.h"

namespace KPF_TOOL {

/// How well a movement along one axis shows in a box.
struct AxisQuality {
  /// From 0 to 1: how much of a movement along this axis the texture shows. Vertical stripes show
  /// all of a movement along x and nothing of one along y; slanted ones half of either.
  double shown = 0;
  /// Pixels: the standard error of one frame's value, from what the movement leaves unexplained.
  double error = 0;
};

/**
 * The displacement of a box by the gradient method.
 *
 * Where brightness has a slope, a small movement changes it in proportion; over all pixels the
 * movement that explains the change best is taken. Directions in which the texture has no slope
 * beyond the noise are left at 0. A change that is the same for all pixels counts as light, not as
 * movement. Holds for movements that are small against the texture: about a pixel.
 */
class Displacement {
 public:
  /// The pixels beside the box that its slopes need.
  static constexpr unsigned kMargin = 3;

  /// @param box as it is asked for.
  /// @param mean of the frames to come, over `grown(box, kMargin)`; is copied from.
  Displacement(const Box& box, const MeanPicture& mean, double rate);

  void add(const unsigned char* frame);
  void addLost();

  /// Pixels to the right of the mean, and down from it.
  const Waveform& x() const { return x_; }
  const Waveform& y() const { return y_; }
  AxisQuality qualityOfX() const { return {shownX_, errorOf(xx_)}; }
  AxisQuality qualityOfY() const { return {shownY_, errorOf(yy_)}; }

 private:
  void takeSlopes(const std::vector<float>& levels, const Box& outer);
  void invert(double noise);
  double errorOf(double variance) const;

  PictureLayout layout_;
  Box box_;                     // the pixels with a slope: not those at the picture's edge
  std::vector<float> mean_;     // of those pixels
  std::vector<float> slopesX_;  // levels a pixel, less their mean over the box
  std::vector<float> slopesY_;
  std::vector<float> present_;
  double xx_ = 0, xy_ = 0, yy_ = 0;  // inverse of the slopes' products, where there is one
  double shownX_ = 0, shownY_ = 0;
  double unexplained_ = 0;  // sum of squared levels over all frames
  double frames_ = 0;
  Waveform x_, y_;
};

}  // namespace KPF_TOOL

#endif

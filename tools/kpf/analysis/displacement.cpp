#include "tools/kpf/analysis/displacement.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace KPF_TOOL {
namespace {

// Slope by seven points: texture of eight pixels a cycle comes out 0.2 % too flat, where the
// difference of the two neighbours would be 10 % off.
constexpr float kNear = 45 / 60.F, kMiddle = -9 / 60.F, kFar = 1 / 60.F;
// By how much the noise of the levels comes back in slopes: the sum of the squares above.
constexpr double kSlopeNoise = 2 * (45. * 45 + 9 * 9 + 1) / (60. * 60);
// Slopes must be this many times stronger than their noise, in squares,
constexpr double kTrusted = 9;
// and stronger than what rounding to whole levels may make up: squared levels a pixel.
constexpr double kRoundingOfSums = 0.01;
// An axis of which less is shown tells what the other one leaks into it.
constexpr double kShown = 0.01;

float slope(const float* level, std::ptrdiff_t step) {
  return kNear * (level[step] - level[-step]) + kMiddle * (level[2 * step] - level[-2 * step]) +
         kFar * (level[3 * step] - level[-3 * step]);
}

/// The pixels of `box` that have a neighbour on every side as far as slopes reach.
Box withSlopes(const Box& box, const PictureLayout& layout) {
  constexpr unsigned m = Displacement::kMargin;
  const unsigned left = std::max(box.x, m);
  const unsigned top = std::max(box.y, m);
  const unsigned right = std::min(box.x + box.width + m, layout.width);
  const unsigned bottom = std::min(box.y + box.height + m, layout.height);
  if (right <= left + m || bottom <= top + m) return {};
  return {left, top, right - m - left, bottom - m - top};
}

void subtractMean(std::vector<float>& values) {
  double sum = 0;
  for (const float value : values) sum += static_cast<double>(value);
  const auto mean = static_cast<float>(sum / static_cast<double>(values.size()));
  for (float& value : values) value -= mean;
}

double product(const std::vector<float>& a, const std::vector<float>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += static_cast<double>(a[i] * b[i]);
  return sum;
}

}  // namespace

Displacement::Displacement(const Box& box, const MeanPicture& mean, double rate)
    : layout_(mean.layout()),
      box_(withSlopes(box, layout_)),
      present_(box_.pixelCount()),
      x_(rate),
      y_(rate) {
  if (box_.pixelCount() == 0) return;
  takeSlopes(mean.levels(), mean.box());
  // The mean of many frames has so much less noise.
  const double noise =
      mean.variance() / static_cast<double>(std::max<std::uint64_t>(mean.frames(), 1));
  invert(static_cast<double>(box_.pixelCount()) *
         (kTrusted * kSlopeNoise * noise + kRoundingOfSums));
}

void Displacement::takeSlopes(const std::vector<float>& levels, const Box& outer) {
  const auto row = static_cast<std::ptrdiff_t>(outer.width);
  for (unsigned y = box_.y; y < box_.y + box_.height; ++y) {
    const float* const first = levels.data() + (y - outer.y) * outer.width + (box_.x - outer.x);
    for (unsigned x = 0; x < box_.width; ++x) {
      mean_.push_back(first[x]);
      slopesX_.push_back(slope(first + x, 1));
      slopesY_.push_back(slope(first + x, row));
    }
  }
  // Light that changes everywhere alike then weighs nothing.
  subtractMean(slopesX_);
  subtractMean(slopesY_);
}

// Products of the slopes, taken apart along their two principal directions: one that has next to no
// slope says nothing, and would say it loudly if it were inverted.
void Displacement::invert(double noise) {
  const double xx = product(slopesX_, slopesX_);
  const double xy = product(slopesX_, slopesY_);
  const double yy = product(slopesY_, slopesY_);
  const double angle = std::atan2(2 * xy, xx - yy) / 2;
  const double half = std::hypot((xx - yy) / 2, xy);
  const double strengths[] = {(xx + yy) / 2 + half, (xx + yy) / 2 - half};
  const double directions[2][2] = {{std::cos(angle), std::sin(angle)},
                                   {-std::sin(angle), std::cos(angle)}};
  for (int i = 0; i < 2; ++i) {
    if (strengths[i] <= noise) continue;
    const double u = directions[i][0], v = directions[i][1];
    xx_ += u * u / strengths[i];
    xy_ += u * v / strengths[i];
    yy_ += v * v / strengths[i];
    shownX_ += u * u;
    shownY_ += v * v;
  }
  if (shownX_ < kShown) xx_ = xy_ = shownX_ = 0;
  if (shownY_ < kShown) yy_ = xy_ = shownY_ = 0;
}

void Displacement::add(const unsigned char* frame) {
  if (box_.pixelCount() == 0) {
    x_.add(0);
    y_.add(0);
    return;
  }
  copyLevels(frame, layout_, box_, present_);
  for (std::size_t i = 0; i < present_.size(); ++i) present_[i] -= mean_[i];
  subtractMean(present_);
  const double alongX = product(present_, slopesX_);
  const double alongY = product(present_, slopesY_);
  // What lies to the right of a rise came from the left: the sign turns.
  const double x = -(xx_ * alongX + xy_ * alongY);
  const double y = -(xy_ * alongX + yy_ * alongY);
  x_.add(x);
  y_.add(y);
  unexplained_ += std::max(product(present_, present_) + x * alongX + y * alongY, 0.0);
  ++frames_;
}

void Displacement::addLost() {
  x_.addLost();
  y_.addLost();
}

double Displacement::errorOf(double variance) const {
  // The mean of the light and two movements are taken from the same pixels.
  const double freedom = frames_ * (static_cast<double>(box_.pixelCount()) - 3);
  return freedom > 0 ? std::sqrt(variance * unexplained_ / freedom) : 0;
}

}  // namespace KPF_TOOL

#include "tools/kpf/analysis/mean_picture.h"

#include <algorithm>

namespace KPF_TOOL {

MeanPicture::MeanPicture(const PictureLayout& layout, const Box& box)
    : layout_(layout),
      box_(box),
      present_(box.pixelCount()),
      sums_(box.pixelCount()),
      squares_(box.pixelCount()) {}

void MeanPicture::add(const unsigned char* frame) {
  copyLevels(frame, layout_, box_, present_);
  for (std::size_t i = 0; i < present_.size(); ++i) {
    const double level = static_cast<double>(present_[i]);
    sums_[i] += level;
    squares_[i] += level * level;
  }
  ++frames_;
}

std::vector<float> MeanPicture::levels() const {
  const double count = static_cast<double>(std::max<std::uint64_t>(frames_, 1));
  std::vector<float> levels(sums_.size());
  std::transform(sums_.begin(), sums_.end(), levels.begin(),
                 [count](double sum) { return static_cast<float>(sum / count); });
  return levels;
}

double MeanPicture::variance() const {
  const double count = static_cast<double>(std::max<std::uint64_t>(frames_, 1));
  double total = 0;
  for (std::size_t i = 0; i < sums_.size(); ++i) {
    const double mean = sums_[i] / count;
    total += std::max(squares_[i] / count - mean * mean, 0.0);
  }
  return sums_.empty() ? 0 : total / static_cast<double>(sums_.size());
}

}  // namespace KPF_TOOL

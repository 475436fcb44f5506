#include "tools/kpf/analysis/waveform.h"

#include <numeric>

namespace KPF_TOOL {

void Waveform::add(double value) {
  const std::size_t end = values_.size();
  const double before = gap_ < end ? values_[end - gap_ - 1] : value;
  for (std::size_t i = 1; i <= gap_; ++i) {
    values_[end - gap_ + i - 1] =
        before + (value - before) * static_cast<double>(i) / static_cast<double>(gap_ + 1);
  }
  gap_ = 0;
  values_.push_back(value);
  lost_.push_back(false);
}

void Waveform::addLost() {
  values_.push_back(values_.empty() ? 0 : values_.back());
  lost_.push_back(true);
  ++lostFrames_;
  ++gap_;
}

double Waveform::mean() const {
  if (values_.empty()) return 0;
  return std::accumulate(values_.begin(), values_.end(), 0.0) / static_cast<double>(values_.size());
}

}  // namespace KPF_TOOL

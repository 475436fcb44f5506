// A picture, smoothed.
#ifndef KPF_BOX_MEAN_H
#define KPF_BOX_MEAN_H

#include <vector>

namespace KPF_TOOL {

/// For every pixel the mean of those at most `reach` away along either axis, as far as the picture
/// goes.
std::vector<float> boxMean(const std::vector<float>& values, unsigned width, unsigned height,
                           unsigned reach);

}  // namespace KPF_TOOL

#endif

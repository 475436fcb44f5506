// Figures as pixels.
#ifndef KPF_DRAWN_PLOTS_H
#define KPF_DRAWN_PLOTS_H

#include <vector>

#include "tools/kpf/frames/canvas.h"
#include "tools/kpf/plots/plot.h"

namespace KPF_TOOL {

/// Light on black, as the other pictures with captions are.
Canvas drawnPlots(const std::vector<Plot>& plots);

}  // namespace KPF_TOOL

#endif

// Figures as vectors.
#ifndef KPF_SVG_H
#define KPF_SVG_H

#include <string>
#include <vector>

#include "tools/kpf/plots/plot.h"

namespace KPF_TOOL {

/// A whole SVG document. Texts are escaped.
std::string svgOf(const std::vector<Plot>& plots);

}  // namespace KPF_TOOL

#endif

// What stands around frames that are written one behind the other.
#ifndef KPF_FRAMING_H
#define KPF_FRAMING_H

#include <string>

#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// Bare frames have nothing around them.
struct Framing {
  std::string before;     // of all frames
  std::string eachFrame;  // before each one

  bool tellsRate() const { return !before.empty(); }
};

/// Y4M, which tells size, rate and samples; players and `kpf record` read it.
Framing y4mFraming(const PictureFormat& format);

}  // namespace KPF_TOOL

#endif

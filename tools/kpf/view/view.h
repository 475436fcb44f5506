// A recording in the browser: a page, and the server that gives it frames.
//
// Nothing outside this folder knows HTTP, so a tool without it is this folder with without_view.cpp
// in place of the other sources.
#ifndef KPF_VIEW_H
#define KPF_VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

/// What is to be looked at, and how the page begins.
struct ViewOptions {
  std::vector<std::string> files;  // header files
  bool live = false;               // begin at the newest frame and stay there
  std::uint16_t port = 0;          // 0: one that is free
  bool noBrowser = false;          // only print the address
  double scale = 0;                // millimetres a pixel; 0: nobody knows
};

/// Serves the page until Ctrl-C. @throws ToolError, KPF_READER::RecordingError.
Outcome view(const ViewOptions& options);

}  // namespace KPF_TOOL

#endif

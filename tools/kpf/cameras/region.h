// A part of a camera's sensor.
#ifndef KPF_REGION_H
#define KPF_REGION_H

#include <string>

namespace KPF_TOOL {

struct Region {
  int width = 0;
  int height = 0;
  int x = 0;
  int y = 0;
};

/// "640x480+16+8", or "640x480" from the corner on. @throws ToolError.
Region parseRegion(const std::string& text);

}  // namespace KPF_TOOL

#endif

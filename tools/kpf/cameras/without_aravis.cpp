// The tool without Aravis: what needs it says so.
#include <memory>
#include <string>

#include "tools/kpf/cameras/camera.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

CameraList findCameras() {
  return {{},
          "This kpf is built without Aravis: on Linux install libaravis-dev, and build it again."};
}

std::unique_ptr<Camera> openCamera(const std::string&, const CameraSettings&) {
  throw ToolError(
      Outcome::kUnreadableInput, "this kpf is built without Aravis",
      "On Linux install libaravis-dev, and build it again; Video4Linux needs no Aravis.");
}

}  // namespace KPF_TOOL

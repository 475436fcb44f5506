// How a camera is set before it runs.
#ifndef KPF_ARAVIS_SETUP_H
#define KPF_ARAVIS_SETUP_H

#include <string>

#include "tools/kpf/cameras/aravis_handles.h"
#include "tools/kpf/cameras/camera.h"
#include "tools/kpf/cameras/pixel_form.h"

namespace KPF_TOOL {

/// @param id as findCameras tells it, an address, or empty for the first camera.
/// @throws ToolError.
CameraPtr connectCamera(const std::string& id);

/// Sets what `settings` ask for and reads back what came of it. @throws ToolError where the camera
/// refuses. @return the format of its pixels.
const PixelForm& setUpCamera(ArvCamera* camera, const CameraSettings& settings);

/// Frames per second that the camera promises; 0 where it does not say.
double frameRateOf(ArvCamera* camera);

}  // namespace KPF_TOOL

#endif

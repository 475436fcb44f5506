// Which cameras there are.
#include <string>
#include <vector>

#include "tools/kpf/cameras/aravis_handles.h"
#include "tools/kpf/cameras/aravis_reach.h"
#include "tools/kpf/cameras/camera.h"

namespace KPF_TOOL {
namespace {

/// What only the camera itself can tell.
void ask(CameraDescription& description) {
  ArvError error;
  const CameraPtr camera(arv_camera_new(description.id.c_str(), error.fresh()));
  if (!camera) {
    description.trouble = error.text();
    return;
  }
  description.pixelFormats = pixelFormatsOf(camera.get());
  int x = 0;
  int y = 0;
  arv_camera_get_region(camera.get(), &x, &y, &description.width, &description.height,
                        error.fresh());
  if (arv_camera_is_frame_rate_available(camera.get(), error.fresh()) != FALSE) {
    description.rate = arv_camera_get_frame_rate(camera.get(), error.fresh());
  }
}

}  // namespace

std::vector<std::string> pixelFormatsOf(ArvCamera* camera) {
  ArvError error;
  guint count = 0;
  const char** const names =
      arv_camera_dup_available_pixel_formats_as_strings(camera, &count, error.fresh());
  std::vector<std::string> formats;
  for (guint i = 0; names != nullptr && i < count; ++i) formats.emplace_back(names[i]);
  g_free(names);
  return formats;
}

CameraList findCameras() {
  arv_update_device_list();
  CameraList list;
  for (unsigned i = 0; i < arv_get_n_devices(); ++i) {
    CameraDescription description;
    description.id = textOf(arv_get_device_id(i));
    description.vendor = textOf(arv_get_device_vendor(i));
    description.model = textOf(arv_get_device_model(i));
    description.serial = textOf(arv_get_device_serial_nbr(i));
    description.address = textOf(arv_get_device_address(i));
    description.protocol = textOf(arv_get_device_protocol(i));
    list.cameras.push_back(description);
  }
  for (CameraDescription& description : list.cameras) ask(description);
  if (list.cameras.empty()) list.nothing = whyNoCamera();
  return list;
}

}  // namespace KPF_TOOL

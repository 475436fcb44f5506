#include "tools/kpf/cameras/aravis_setup.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <vector>

#include "tools/kpf/cameras/aravis_reach.h"
#include "tools/kpf/cameras/region.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

/// @param what was asked of the camera.
void check(const ArvError& error, const std::string& what) {
  if (!error) return;
  throw ToolError(Outcome::kWrongUsage,
                  fmt::format("the camera refuses {}: {}", what, escaped(error.text())),
                  "See kpf cameras for what it offers; arv-tool-0.8 lists every feature.");
}

/// Who came first controls the camera, and all others may only read.
void checkControl(ArvCamera* camera) {
  ArvDevice* const device = arv_camera_get_device(camera);
  if (!ARV_IS_GV_DEVICE(device) || arv_gv_device_is_controller(ARV_GV_DEVICE(device)) != FALSE)
    return;
  throw ToolError(Outcome::kRefused, "another program controls the camera",
                  "Close the other program; one that crashed is forgotten after some seconds.");
}

/// @param setting "Name=Value".
void setFeature(ArvCamera* camera, const std::string& setting) {
  const auto equals = setting.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} sets nothing", quoted(setting)),
                    "Write --set like ExposureAuto=Off.");
  }
  const std::string name = setting.substr(0, equals);
  ArvGcNode* const node = arv_device_get_feature(arv_camera_get_device(camera), name.c_str());
  if (!ARV_IS_GC_FEATURE_NODE(node)) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("the camera has no {}", escaped(name)),
                    "See arv-tool-0.8 features for what it has.");
  }
  ArvError error;
  arv_gc_feature_node_set_value_from_string(ARV_GC_FEATURE_NODE(node), setting.c_str() + equals + 1,
                                            error.fresh());
  check(error, escaped(setting));
}

const PixelForm& setPixelForm(ArvCamera* camera, int bits) {
  ArvError error;
  const std::vector<std::string> offered = pixelFormatsOf(camera);
  const std::string present = textOf(arv_camera_get_pixel_format_as_string(camera, error.fresh()));
  const PixelForm* const form = bits == 0 ? pixelForm(present) : pixelFormFor(bits, offered);
  if (form == nullptr) {
    throw ToolError(
        Outcome::kWrongUsage,
        bits == 0 ? fmt::format("pixels of the format {} cannot be recorded", escaped(present))
                  : fmt::format("the camera has no format of {} bits", bits),
        fmt::format("It offers {}; recorded are Mono8, 10, 12, 12p, 12Packed, 14 and 16: choose by "
                    "--bits or --set PixelFormat=.",
                    escaped(fmt::format("{}", fmt::join(offered, ", ")))));
  }
  if (present != form->name) {
    arv_camera_set_pixel_format_from_string(camera, form->name, error.fresh());
    check(error, form->name);
  }
  return *form;
}

/// Cameras take whatever number they are given, and send something else.
void setRegion(ArvCamera* camera, const std::string& text) {
  const Region region = parseRegion(text);
  ArvError error;
  Region sensor;
  arv_camera_get_sensor_size(camera, &sensor.width, &sensor.height, error.fresh());
  if (!error &&
      (region.x + region.width > sensor.width || region.y + region.height > sensor.height)) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("the region {} leaves the sensor", text),
                    fmt::format("It has {} x {} pixels.", sensor.width, sensor.height));
  }
  arv_camera_set_region(camera, region.x, region.y, region.width, region.height, error.fresh());
  check(error, "the region " + text);
  Region made;
  arv_camera_get_region(camera, &made.x, &made.y, &made.width, &made.height, error.fresh());
  if (made.width == region.width && made.height == region.height) return;
  throw ToolError(
      Outcome::kWrongUsage,
      fmt::format("the camera makes {} x {} of the region {}", made.width, made.height, text),
      "Choose one in the steps of this camera.");
}

}  // namespace

CameraPtr connectCamera(const std::string& id) {
  ArvError error;
  CameraPtr camera(arv_camera_new(id.empty() ? nullptr : id.c_str(), error.fresh()));
  if (camera) {
    checkControl(camera.get());
    return camera;
  }
  throw ToolError(Outcome::kUnreadableInput,
                  id.empty() ? "no camera was found"
                             : fmt::format("no camera {}: {}", escaped(id), escaped(error.text())),
                  id.empty() ? whyNoCamera() : "See kpf cameras for those within reach.");
}

const PixelForm& setUpCamera(ArvCamera* camera, const CameraSettings& settings) {
  for (const std::string& feature : settings.features) setFeature(camera, feature);
  const PixelForm& form = setPixelForm(camera, settings.bits);
  if (!settings.region.empty()) setRegion(camera, settings.region);
  ArvError error;
  arv_camera_set_acquisition_mode(camera, ARV_ACQUISITION_MODE_CONTINUOUS, error.fresh());
  check(error, "to run continuously");
  if (settings.exposure > 0) {
    arv_camera_set_exposure_time(camera, settings.exposure, error.fresh());
    check(error, fmt::format("an exposure of {:g} microseconds", settings.exposure));
  }
  if (settings.rate > 0) {
    arv_camera_set_frame_rate(camera, settings.rate, error.fresh());
    check(error, fmt::format("{:g} frames/s", settings.rate));
  }
  return form;
}

double frameRateOf(ArvCamera* camera) {
  ArvError error;
  if (arv_camera_is_frame_rate_available(camera, error.fresh()) == FALSE || error) return 0;
  const double rate = arv_camera_get_frame_rate(camera, error.fresh());
  return error ? 0 : rate;
}

}  // namespace KPF_TOOL

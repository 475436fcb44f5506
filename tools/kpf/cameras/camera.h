// GenICam cameras: all that the tool asks of Aravis.
//
// Nothing outside this folder includes Aravis' headers, so a tool without it is this folder with
// without_aravis.cpp in place of the sources that begin with aravis_.
#ifndef KPF_CAMERA_H
#define KPF_CAMERA_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kpf/frames/live_source.h"

namespace KPF_TOOL {

/// Names of cameras begin with it: `genicam:ID`, `genicam:ADDRESS`, or alone for the first one.
constexpr std::string_view kCameraPrefix = "genicam:";

/// What a camera says of itself.
struct CameraDescription {
  std::string id;
  std::string vendor;
  std::string model;
  std::string serial;
  std::string address;   // IP address, or place on the USB
  std::string protocol;  // "GigEVision", "USB3Vision"
  std::vector<std::string> pixelFormats;
  int width = 0;  // as it is set now
  int height = 0;
  double rate = 0;      // frames per second; 0 where it does not say
  std::string trouble;  // why no more is known; empty where all is
};

struct CameraList {
  std::vector<CameraDescription> cameras;
  std::string nothing;  // why there is none
};

/// Asks for all cameras within reach, which takes a second.
CameraList findCameras();

/// How a camera is to be set; what is left out stays as it is.
struct CameraSettings {
  int bits = 0;                       // 8 or 12, of a pixel as recorded
  double rate = 0;                    // frames per second
  double exposure = 0;                // microseconds
  std::string region;                 // "640x480+0+0"
  std::vector<std::string> features;  // "Name=Value", set in this order, before all else
  unsigned buffers = 0;               // frames; 0: those of half a second
};

/// A camera that delivers frames from the first next() on.
class Camera : public LiveSource {
 public:
  virtual unsigned width() const = 0;
  virtual unsigned height() const = 0;
  /// 8 or 12, of a pixel as recorded.
  virtual int bits() const = 0;
  /// Frames per second that the camera promises; 0 where it does not say.
  virtual double rate() const = 0;
  virtual unsigned buffers() const = 0;
  /// Vendor, model and pixel format, for people.
  virtual std::string description() const = 0;
};

/// @param name begins with kCameraPrefix.
/// @throws ToolError where there is no such camera, or it cannot be set like this.
std::unique_ptr<Camera> openCamera(const std::string& name, const CameraSettings& settings);

}  // namespace KPF_TOOL

#endif

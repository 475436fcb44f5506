// kpf cameras: what there is to record from.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdio>

#include "tools/kpf/cameras/camera.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

struct CamerasOptions {
  bool json = false;
};

Json json(const CameraDescription& camera) {
  return {{"id", camera.id},
          {"vendor", camera.vendor},
          {"model", camera.model},
          {"serial", camera.serial},
          {"address", camera.address},
          {"protocol", camera.protocol},
          {"pixelFormats", camera.pixelFormats},
          {"width", camera.width},
          {"height", camera.height},
          {"rate", camera.rate},
          {"trouble", camera.trouble}};
}

void print(const CameraDescription& camera) {
  fmt::print("{}\n  {} {}, {} at {}\n", escaped(camera.id), escaped(camera.vendor),
             escaped(camera.model), escaped(camera.protocol), escaped(camera.address));
  if (!camera.trouble.empty()) {
    fmt::print("  tells no more: {}\n", escaped(camera.trouble));
    return;
  }
  fmt::print("  {} x {}, {:g} frames/s, {}\n", camera.width, camera.height, camera.rate,
             escaped(fmt::format("{}", fmt::join(camera.pixelFormats, ", "))));
}

Outcome runCameras(const CamerasOptions& options) {
  const CameraList list = findCameras();
  if (options.json) {
    Json cameras = Json::array();
    for (const CameraDescription& camera : list.cameras) cameras.push_back(json(camera));
    printJson({{"cameras", cameras}, {"nothing", list.nothing}});
    return Outcome::kDone;
  }
  for (const CameraDescription& camera : list.cameras) print(camera);
  if (list.cameras.empty()) tell("kpf: no camera was found\n{}\n", list.nothing);
  return Outcome::kDone;
}

}  // namespace

void addCameras(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "cameras", "List the GenICam cameras within reach", runCameras);
  addJson(line, options.json);
  addFooter(line, "kpf cameras --json",
            {"the cameras are listed, or why there are none", "", kNotBegunText});
}

}  // namespace KPF_TOOL

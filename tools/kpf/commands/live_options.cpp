#include "tools/kpf/commands/live_options.h"

#include <fmt/format.h>

#include <string>

#include "tools/kpf/cameras/camera.h"
#include "tools/kpf/cameras/region.h"
#include "tools/kpf/commands/command.h"
#include "tools/kpf/commands/record_live.h"
#include "tools/kpf/recording/event.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr double kShortestExposure = 0.01;  // microseconds
constexpr double kLongestExposure = 1e9;

[[noreturn]] void refuse(const std::string& what, const std::string& advice) {
  throw ToolError(Outcome::kWrongUsage, what, advice);
}

bool isCamera(const RecordOptions& options) { return options.input.starts_with(kCameraPrefix); }

void checkCamera(const RecordOptions& options) {
  const LiveOptions& live = options.live;
  if (!live.region.empty()) parseRegion(live.region);
  if (isCamera(options)) {
    if (options.raw.empty() && !options.fillGaps) return;
    refuse("--raw and --fill-gaps are for other inputs",
           "Leave them out: what a camera loses always keeps its place.");
  }
  if (live.exposure > 0 || !live.features.empty() || !live.region.empty() || live.buffers > 0) {
    refuse("--exposure, --set, --region and --buffers are for GenICam cameras",
           "Name one like genicam:192.168.0.10.");
  }
}

void checkEvent(const RecordOptions& options) {
  const LiveOptions& live = options.live;
  if (!live.trigger.empty()) parseMotionLevel(live.trigger);
  if (!live.after.empty()) parseAfter(live.after, 1);
  if (!live.waits()) {
    if (live.after.empty() && !live.again) return;
    refuse("--after and --again go with an event", "Give --before or --trigger too.");
  }
  if (options.frames > 0 || options.duration > 0) {
    refuse("--frames and --duration do not go with an event",
           "Say with --after how much is recorded from the event on.");
  }
}

}  // namespace

bool isLive(const RecordOptions& options) { return isCamera(options) || options.live.waits(); }

void checkLiveOptions(const RecordOptions& options) {
  checkCamera(options);
  checkEvent(options);
  if (isLive(options)) {
    if (!options.start.empty()) {
      refuse("--start does not go with frames that come in their own time",
             "Choose with --clock whose time they get.");
    }
    if (options.checksums) {
      refuse("--checksums reads every record back, which frames do not wait for",
             "Use kpf checksum when they are recorded.");
    }
    if (options.fillGaps) {
      refuse("--fill-gaps is for videos: here every loss keeps its place", "Leave it out.");
    }
  } else if (options.live.noLoss || !options.live.clock.empty()) {
    refuse("--no-loss and --clock are for cameras and events", "Leave them out.");
  }
}

void addLiveOptions(CLI::App& line, LiveOptions& options) {
  const char* const camera = "GenICam cameras";
  line.add_option("--exposure", options.exposure, "microseconds")
      ->check(between(kShortestExposure, kLongestExposure))
      ->group(camera);
  line.add_option("--set", options.features,
                  "NAME=VALUE, any feature of the camera; may be repeated")
      ->allow_extra_args(false)
      ->group(camera);
  line.add_option("--region", options.region, "WIDTHxHEIGHT+X+Y of the sensor")->group(camera);
  line.add_option("--buffers", options.buffers,
                  "frames that may wait while the disk is slow; those of half a second")
      ->check(CLI::Range(2U, 100000U))
      ->transform(decimal())
      ->group(camera);
  const char* const both = "Cameras and events";
  line.add_option("--clock", options.clock, "times of the frames: camera, system or rate")
      ->check(CLI::IsMember({"camera", "system", "rate"}))
      ->group(both);
  line.add_flag("--no-loss", options.noLoss, "exit code 1 where a frame is lost")->group(both);
  line.add_option("--before", options.before,
                  "records kept from before an event: Enter, SIGUSR1 or --trigger")
      ->check(CLI::Range(0, 10000000))
      ->transform(decimal())
      ->group(both);
  line.add_option("--trigger", options.trigger,
                  "motion:LEVEL, by how much frames are brighter than before, in the mean")
      ->group(both);
  line.add_option("--after", options.after, "frames (100) or seconds (2.5s) from the event on")
      ->group(both);
  line.add_flag("--again", options.again, "wait for the next event: clip_0001.kpf, clip_0002.kpf")
      ->group(both);
}

}  // namespace KPF_TOOL

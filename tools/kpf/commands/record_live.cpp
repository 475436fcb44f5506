#include "tools/kpf/commands/record_live.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/kpf/cameras/camera.h"
#include "tools/kpf/commands/live_report.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/commands/record_input.h"
#include "tools/kpf/recording/clip_files.h"
#include "tools/kpf/recording/event.h"
#include "tools/kpf/recording/input_as_live.h"
#include "tools/kpf/recording/live_recorder.h"
#include "tools/kpf/recording/live_status.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/machine.h"
#include "tools/kpf/terminal/status_line.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

/// A camera, or another input that is recorded like one.
struct LiveInput {
  std::unique_ptr<Camera> camera;
  std::unique_ptr<FrameSource> video;
  std::unique_ptr<LiveSource> adapter;  // of the video
  unsigned width = 0;
  unsigned height = 0;
  int bits = 8;
  double rate = 0;
  unsigned buffers = 0;

  LiveSource& source() const { return camera ? *camera : *adapter; }
  std::size_t recordSize() const {
    return vxGetPackedSize(width, height, static_cast<unsigned>(bits));
  }
};

CameraSettings settingsOf(const RecordOptions& options) {
  CameraSettings settings;
  settings.bits = options.bits;
  settings.rate = options.rate;
  settings.exposure = options.live.exposure;
  settings.region = options.live.region;
  settings.features = options.live.features;
  settings.buffers = options.live.buffers;
  return settings;
}

LiveInput openCameraInput(const RecordOptions& options, RecordReport& report) {
  LiveInput input;
  input.camera = openCamera(options.input, settingsOf(options));
  input.width = input.camera->width();
  input.height = input.camera->height();
  input.bits = input.camera->bits();
  input.buffers = input.camera->buffers();
  // What the camera made of --rate is the truth.
  RecordOptions own = options;
  if (input.camera->rate() > 0) own.rate = 0;
  input.rate = wholeRate(own, input.camera->rate(), report);
  if (!options.quiet) {
    tell("kpf: {}, {} x {}, {:g} frames/s, {} buffers\n", input.camera->description(), input.width,
         input.height, input.rate, input.buffers);
  }
  return input;
}

/// @return nothing where the user interrupted it.
std::optional<LiveInput> openLiveInput(const RecordOptions& options, RecordReport& report) {
  if (options.input.starts_with(kCameraPrefix)) return openCameraInput(options, report);
  LiveInput input;
  input.video = openInput(options);
  for (const std::string& line : input.video->remarks()) report.remark(line);
  input.width = input.video->width();
  input.height = input.video->height();
  input.bits = options.videoBits();
  input.rate = wholeRate(options, input.video->frameRate(), report);
  if (!findFirstFrame(*input.video, options)) return std::nullopt;
  input.adapter = std::make_unique<InputAsLive>(*input.video, input.bits,
                                                Timeline(options.fillGaps, input.rate));
  return input;
}

ClipLimit limitOf(const RecordOptions& options, double rate) {
  if (!options.live.after.empty()) return parseAfter(options.live.after, rate);
  ClipLimit limit;
  if (options.duration > 0) limit = lasting(options.duration, rate);
  const std::uint64_t frames =
      options.frames > 0 ? options.frames : std::uint64_t{LibraryStream::kFramesUnknown};
  limit.frames = std::min(limit.frames, frames);
  return limit;
}

ClockKind clockOf(const std::string& name) {
  if (name == "system") return ClockKind::kSystem;
  return name == "rate" ? ClockKind::kRate : ClockKind::kCamera;
}

/// Null where nothing is waited for.
std::unique_ptr<Event> eventOf(const LiveInput& input, const RecordOptions& options) {
  const LiveOptions& live = options.live;
  if (!live.waits()) return nullptr;
  std::unique_ptr<MotionTrigger> motion;
  if (!live.trigger.empty()) {
    motion = std::make_unique<MotionTrigger>(parseMotionLevel(live.trigger), input.width,
                                             input.height, input.bits != 8);
  }
  return std::make_unique<Event>(options.input != "-", std::move(motion));
}

void tellWhatIsAwaited(const RecordOptions& options) {
  if (options.quiet) return;
  std::vector<std::string> ways;
  if (options.input != "-") ways.emplace_back("Enter");
  if (!startSignalText().empty()) ways.push_back(startSignalText());
  if (!options.live.trigger.empty()) ways.push_back(escaped(options.live.trigger));
  tell("kpf: nothing is written until {}\n", fmt::join(ways, " or "));
}

/// Memory that the system does not have would be given all the same, and fail when it is used.
void checkMemory(std::uint64_t records, std::size_t recordSize) {
  const double memory = machineMemory();
  const double wanted = static_cast<double>(records) * static_cast<double>(recordSize);
  if (wanted <= memory * 0.75) return;
  throw ToolError(Outcome::kRefused,
                  fmt::format("{} take {} of memory, this machine has {}",
                              countText(records, "record"), sizeText(wanted), sizeText(memory)),
                  "Keep fewer with --before, or a smaller --region.");
}

double diskMinutes(const std::string& header, const LiveInput& input) {
  std::error_code unknown;
  const auto space = std::filesystem::space(std::filesystem::path(header).parent_path(), unknown);
  if (unknown) return 0;
  return static_cast<double>(space.available) / static_cast<double>(input.recordSize()) /
         input.rate / 60;
}

LiveStatus statusOf(const LiveRecorder& recorder, const ClipFiles& files, const LiveInput& input,
                    const Event* event) {
  LiveStatus status;
  status.armed = event != nullptr && recorder.isArmed();
  status.held = recorder.held();
  if (event != nullptr && event->motion() != nullptr) status.motion = event->motion()->level();
  status.frames = recorder.accepted();
  status.received = recorder.tally().received;
  status.rateWanted = input.rate;
  status.lost = recorder.tally().lost + recorder.tally().incomplete;
  status.waiting = input.source().waiting();
  status.mostWaiting = recorder.mostWaiting();
  status.buffers = input.buffers;
  status.worstCall = files.worstCall();
  return status;
}

/// Runs the loop. @return why it ended before anybody wanted it to; empty where it did not.
std::string runLoop(LiveRecorder& recorder, const ClipFiles& files, const LiveInput& input,
                    const Event* event, const CapturedOutput& captured,
                    const RecordOptions& options) {
  StatusLine line(options.quiet);
  const auto progress = [&] {
    if (!line.isDue()) return;
    LiveStatus status = statusOf(recorder, files, input, event);
    status.before = static_cast<std::uint64_t>(std::max<std::int64_t>(options.live.before, 0));
    status.seconds = line.seconds();
    status.diskMinutes = diskMinutes(options.output, input);
    line.show(liveText(status));
  };
  try {
    recorder.run([&captured] { return Interrupt::requested() || captured.any(); }, progress);
  } catch (const ToolError& error) {
    return fmt::format("{}; {}", error.what(), error.advice());
  }
  return input.source().trouble();
}

LivePlan planOf(const LiveInput& input, const RecordOptions& options, Trigger* trigger) {
  LivePlan plan;
  plan.rate = input.rate;
  plan.clock = clockOf(options.live.clock);
  plan.recordSize = input.recordSize();
  plan.trigger = trigger;
  plan.before = static_cast<std::uint64_t>(std::max<std::int64_t>(options.live.before, 0));
  plan.limit = limitOf(options, input.rate);
  plan.again = options.live.again;
  return plan;
}

}  // namespace

Outcome recordLive(const RecordOptions& options) {
  RecordOptions own = options;
  own.output = checkedHeader(options);
  RecordReport remarks(own.quiet, own.json);
  const std::optional<LiveInput> input = openLiveInput(own, remarks);
  if (!input) return Outcome::kCutShort;
  const auto event = eventOf(*input, own);
  const LivePlan plan = planOf(*input, own, event.get());
  checkMemory(plan.before, plan.recordSize);
  const bool limited = plan.limit.frames < LibraryStream::kFramesUnknown;
  checkRoom(own.output, (limited ? plan.limit.frames : 1) * plan.recordSize);
  if (event) tellWhatIsAwaited(own);
  LiveResult result;
  {
    CapturedOutput captured;
    ClipFiles files({own.output, own.live.again, own.force, filesRead(own.input)},
                    configurationFor({input->width, input->height, input->bits}, own, input->rate,
                                     LibraryStream::kFramesUnknown, remarks),
                    captured);
    LiveRecorder recorder(input->source(), files, plan);
    result.trouble = runLoop(recorder, files, *input, event.get(), captured, own);
    result.clips = files.clips();
    result.tally = recorder.tally();
    // Videos come as fast as they can be read.
    if (input->camera) result.drift = recorder.clock().drift();
    result.clockResets = recorder.clock().resets();
    result.clockMissing = recorder.clock().isMissing();
    result.mostWaiting = recorder.mostWaiting();
    result.buffers = input->buffers;
    result.worstCall = files.worstCall();
  }
  return report(result, own, remarks);
}

}  // namespace KPF_TOOL

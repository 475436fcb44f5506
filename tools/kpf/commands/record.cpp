// kpf record: a video becomes a recording.
#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/commands/record_input.h"
#include "tools/kpf/commands/record_live.h"
#include "tools/kpf/commands/record_options.h"
#include "tools/kpf/recording/checksummed_stream.h"
#include "tools/kpf/recording/claim.h"
#include "tools/kpf/recording/record_report.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/recording/recorder.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/recording/timed_stream.h"
#include "tools/kpf/recording/timeline.h"
#include "tools/kpf/terminal/captured_output.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

std::uint64_t recordSizeOf(const FrameSource& input, const RecordOptions& options) {
  return vxGetPackedSize(input.width(), input.height(), static_cast<unsigned>(options.videoBits()));
}

/// Whether frames come when they are taken, as those of cameras and pipes do, and not when they are
/// asked for.
bool setsThePace(const std::string& input) {
  namespace fs = std::filesystem;
  std::error_code unknown;
  const fs::file_status status = fs::status(input == "-" ? "/dev/stdin" : input, unknown);
  return fs::exists(status) && !fs::is_regular_file(status);
}

/// What to say of frames that do not stand where their times are.
std::string timeRemark(const Timeline& timeline, const RecordOptions& options) {
  if (timeline.keepsTime()) return "";
  if (options.fillGaps) {
    return fmt::format("frames of {} come faster than they are recorded, and were moved: {}",
                       escaped(options.input), "a higher --rate keeps their places");
  }
  return fmt::format("the frames of {} are not evenly spaced, {:.2f} s of them became {:.2f} s: {}",
                     escaped(options.input), timeline.inputSeconds(), timeline.placedSeconds(),
                     "--fill-gaps keeps their places");
}

/// Runs the loop. @return what is wrong with the input; empty where nothing is.
std::string runLoop(Recorder& recorder, const FrameSource& input, const CapturedOutput& captured,
                    std::uint64_t total, bool quiet) {
  Progress progress(quiet, total);
  try {
    recorder.run([&captured] { return Interrupt::requested() || captured.any(); },
                 [&progress](std::uint64_t written) { progress.show(written); });
  } catch (const ToolError& error) {  // what was recorded so far is closed in good order
    const std::string flaw = input.flaw();
    return fmt::format("{}{}{}; {}", flaw, flaw.empty() ? "" : ", ", error.what(), error.advice());
  }
  return input.flaw();
}

RecordResult resultOf(const std::string& header, const LibraryStream& stream,
                      const Recorder& recorder, const TimedStream& timed,
                      const RecordOptions& options) {
  RecordResult result;
  result.header = header;
  result.frames = recorder.written();
  result.placeholders = recorder.placeholders();
  result.damaged = recorder.damaged();
  result.onDisk = stream.isThere() ? recordsOnDisk(header) : 0;
  result.within999 = timed.calls().within(0.999);
  result.longest = timed.calls().longest();
  if (setsThePace(options.input)) result.late = timed.late();
  return result;
}

/// Records into files that are known to be free. @throws ToolError when they cannot be begun.
Outcome recordInto(const std::string& header, FrameSource& input, const RecordOptions& options,
                   double rate, std::uint64_t limit, RecordReport& report) {
  CapturedOutput captured;
  LibraryStream stream(
      header, configurationFor({input.width(), input.height(), options.videoBits()}, options, rate,
                               limit, report));
  if (!stream.isOpen()) {
    captured.release();
    throw ToolError(Outcome::kRefused, fmt::format("cannot begin {}", escaped(header)),
                    "See the lines above.");
  }
  std::optional<ChecksummedStream> checked;
  if (options.checksums) checked.emplace(stream, header);
  TimedStream timed(checked ? static_cast<RecordStream&>(*checked) : stream, rate);
  Recorder recorder(input, timed, limit, Timeline(options.fillGaps, rate, input.frameRate()));
  const std::string trouble =
      runLoop(recorder, input, captured, options.isLimited() ? limit : 0, options.quiet);
  const bool complaints = captured.any();
  stream.close();
  RecordResult result = resultOf(header, stream, recorder, timed, options);
  result.trouble = trouble;
  const bool whole = !complaints && result.onDisk == result.frames;
  const bool complete = stream.announce(result.frames, whole) && whole;
  result.written = complete;
  if (!complete) {
    result.obstacle = obstacleTo(header, stream.isThere(), recordSizeOf(input, options));
  }
  if (checked && !checked->finish() && complete) {
    result.written = false;
    result.obstacle = "not all of their checksums are";
  }
  // The library does not know that the smaller number was made true, and says so.
  if (complete) captured.drop();
  captured.release();
  report.remark(timeRemark(recorder.timeline(), options));
  return report.conclude(result);
}

Outcome runRecord(const RecordOptions& options) {
  checkLiveOptions(options);
  const Interrupt interrupt;
  if (isLive(options)) return recordLive(options);
  const std::string header = checkedHeader(options);
  const auto input = openInput(options);
  RecordReport report(options.quiet, options.json);
  for (const std::string& line : input->remarks()) report.remark(line);
  const double rate = wholeRate(options, input->frameRate(), report);
  const std::uint64_t limit = frameLimit(options, rate);
  if (!findFirstFrame(*input, options)) return Outcome::kCutShort;
  const std::uint64_t recordSize = recordSizeOf(*input, options);
  checkRoom(header, options.isLimited() ? limit * recordSize : recordSize);
  const Claim claim(header);
  claim.demand();
  // Only now: what cannot be recorded costs nobody an older recording.
  clearTarget(header, options.force, filesRead(options.input));
  return recordInto(header, *input, options, rate, limit, report);
}

}  // namespace

void addRecord(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "record", "Record a video or a camera", runRecord);
  addRecordOptions(line, options);
  addFooter(line, "kpf record street.avi clip.kpf --bits 12",
            {"every frame is on disk, up to the end, the limit or Ctrl-C",
             "the input is damaged or ended early, or the disk is full", kNotBegunText});
}

}  // namespace KPF_TOOL

// kpf record: a video becomes a recording.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <regex>
#include <string>

#include "kpf_reader.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/recording/recorder.h"
#include "tools/kpf/recording/start_time.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/recording/timeline.h"
#include "tools/kpf/terminal/captured_output.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

// Announced where nobody knows the number, and set right in the end: a recorder that is killed on
// the way leaves a recording that lacks frames, which is what it is.
constexpr unsigned kMostFrames = LibraryStream::kFramesUnknown;
constexpr unsigned kLongestSide = 0xFFFF;  // pixels; the header has 16 bits for each side

struct RecordOptions {
  std::string input;         // whatever FFmpeg opens; "-" standard input
  std::string output;        // header file
  int bits = 8;              // 8 or 12
  std::string raw;           // "640x480:gray8": the input is nothing but frames
  std::uint64_t frames = 0;  // at most; 0: as many as the input holds
  double duration = 0;       // in seconds, at most; 0: as long as the input lasts
  double rate = 0;           // frames per second; 0: the input's
  std::string start;         // of the first frame; empty: now
  std::string text;          // text5
  std::string note;          // text2
  bool fillGaps = false;     // placeholders where the input's time stamps skip frames
  bool force = false;        // replace another recording
  bool quiet = false;
};

/// What can be found wrong before the input is opened. @return the header file's path.
std::string checkedHeader(const RecordOptions& options) {
  std::string header = headerPath(options.output);
  parseStartTime(options.start);
  checkTarget(header, options.force, filesRead(options.input));
  return header;
}

/// What --raw says. @throws ToolError where it says it otherwise.
MediaHints hintsOf(const RecordOptions& options) {
  MediaHints hints;
  hints.rate = options.rate;
  if (options.raw.empty()) return hints;
  static const std::regex form(R"(([1-9]\d{0,4}x[1-9]\d{0,4}):gray(8|12le|16le))");
  std::smatch match;
  if (!std::regex_match(options.raw, match, form)) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} is no frame", quoted(options.raw)),
                    "Write --raw like 640x480:gray8, :gray12le or :gray16le.");
  }
  hints.rawSize = match[1].str();
  hints.rawFormat = match[2].str() == "8" ? "gray" : "gray" + match[2].str();
  return hints;
}

std::unique_ptr<FrameSource> openInput(const RecordOptions& options, const MediaHints& hints) {
  auto input =
      openMedia(options.input, options.bits == 8 ? Samples::k8Bit : Samples::k16Bit, hints);
  if (input->width() > kLongestSide || input->height() > kLongestSide) {
    throw ToolError(Outcome::kWrongUsage, "frames of more than 65535 rows or columns do not fit",
                    "Make the video smaller.");
  }
  return input;
}

/// The frame rate to record, which the format holds as a whole number.
double rateOf(const FrameSource& input, const RecordOptions& options) {
  const double rate = options.rate > 0 ? options.rate : input.frameRate();
  const double whole = std::round(rate);
  if (whole < 1 || whole > std::numeric_limits<int>::max()) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} tells no frame rate", options.input),
                    "Give one with --rate.");
  }
  if (whole != rate && !options.quiet) {
    fmt::print(stderr, "kpf: {:g} frames/s are recorded as {:g}: the format holds whole rates\n",
               rate, whole);
  }
  if (options.rate == 0 && !options.quiet && tellsNoRate(options.input, hintsOf(options))) {
    fmt::print(stderr, "kpf: {} tells no frame rate: {:g} is taken, --rate chooses\n",
               escaped(options.input), whole);
  }
  return whole;
}

bool isLimited(const RecordOptions& options) { return options.frames > 0 || options.duration > 0; }

/// The frames after which to stop.
std::uint64_t limitOf(const RecordOptions& options, double rate) {
  double limit = kMostFrames;
  if (options.frames > 0) limit = std::min(limit, static_cast<double>(options.frames));
  if (options.duration > 0) {
    limit = std::min(limit, std::max(1.0, std::round(options.duration * rate)));
  }
  return static_cast<std::uint64_t>(limit);
}

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationFor(const FrameSource& input,
                                                        const RecordOptions& options, double rate,
                                                        std::uint64_t frames) {
  const StartTime start = parseStartTime(options.start);
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.text2 = options.note;
  configuration.text5 = options.text;
  configuration.width = input.width();
  configuration.height = input.height();
  configuration.frameRate = static_cast<int>(rate);
  configuration.bitsPerPixel = options.bits;
  configuration.frameCount = static_cast<unsigned>(frames);
  configuration.startSeconds = start.seconds;
  configuration.startMicroseconds = start.microseconds;
  return configuration;
}

/// Looks at the files themselves: what the writer believes is no proof.
std::uint64_t recordsOnDisk(const std::string& header) {
  const KPF_READER::Recording recording(header, KPF_READER::Access::kSparse);
  return recording.recordCount();
}

/// What is wrong with the input although all that it gave is on disk; empty when nothing is.
std::string lossesOf(const std::string& trouble, const Recorder& recorder) {
  std::string losses = trouble.empty() ? "" : ": " + trouble;
  if (recorder.damaged() > 0) {
    losses = fmt::format(", {} of them placeholders for what is damaged in the input",
                         recorder.damaged()) +
             losses;
  }
  return losses;
}

Outcome writeFailed(const std::string& header, const Recorder& recorder) {
  fmt::print(stderr, "kpf: {}: {} of {} are on disk: the files could not be written, {}\n",
             escaped(header), recordsOnDisk(header), countText(recorder.written(), "frame"),
             "is the disk full?");
  fmt::print(stderr, "What is there can be read; kpf verify tells what is missing.\n");
  return Outcome::kWriteFailed;
}

/// Prints the last line. @param trouble why the input ended before its end.
Outcome conclude(const Recorder& recorder, const std::string& header, const std::string& trouble,
                 const RecordOptions& options) {
  const std::string losses = lossesOf(trouble, recorder);
  const std::string frames = countText(recorder.written(), "frame");
  if (!losses.empty()) {
    fmt::print(stderr, "kpf: {}: {} recorded{}\n", escaped(header), frames, losses);
    return trouble.empty() ? Outcome::kProblemsFound : Outcome::kCutShort;
  }
  if (!options.quiet) {
    fmt::print("{}: {} recorded, {}\n", escaped(header), frames,
               countText(recorder.placeholders(), "placeholder"));
  }
  return Outcome::kDone;
}

/// Runs the loop. @return why the input ended before its end; empty where it did not.
std::string runLoop(Recorder& recorder, const FrameSource& input, const CapturedOutput& captured,
                    std::uint64_t total, bool quiet) {
  Progress progress(quiet, total);
  try {
    recorder.run([&captured] { return Interrupt::requested() || captured.any(); },
                 [&progress](std::uint64_t written) { progress.show(written); });
  } catch (const ToolError& error) {  // what was recorded so far is closed in good order
    return fmt::format("{}; {}", error.what(), error.advice());
  }
  return input.trouble();
}

/// Records into files that are known to be free. @throws ToolError when they cannot be begun.
Outcome recordInto(const std::string& header, FrameSource& input, const RecordOptions& options,
                   double rate, std::uint64_t limit) {
  CapturedOutput captured;
  LibraryStream stream(header, configurationFor(input, options, rate, limit));
  if (!stream.isOpen()) {
    captured.release();
    throw ToolError(Outcome::kRefused, fmt::format("cannot begin {}", escaped(header)),
                    "See the lines above.");
  }
  Recorder recorder(input, stream, limit, Timeline(options.fillGaps, rate));
  const std::string trouble =
      runLoop(recorder, input, captured, isLimited(options) ? limit : 0, options.quiet);
  const bool complaints = captured.any();
  stream.close();
  bool whole = !complaints && recordsOnDisk(header) == recorder.written();
  whole = stream.announce(recorder.written(), whole) && whole;
  // The library does not know that the smaller number was made true, and says so.
  if (whole) captured.drop();
  captured.release();
  return whole ? conclude(recorder, header, trouble, options) : writeFailed(header, recorder);
}

Outcome runRecord(const RecordOptions& options) {
  const Interrupt interrupt;
  const MediaHints hints = hintsOf(options);
  const std::string header = checkedHeader(options);
  const auto input = openInput(options, hints);
  const double rate = rateOf(*input, options);
  const std::uint64_t limit = limitOf(options, rate);
  if (!input->next()) {
    if (Interrupt::requested()) return Outcome::kCutShort;
    throw ToolError(Outcome::kUnreadableInput,
                    fmt::format("{} holds no frames", escaped(options.input)),
                    "Give a video that can be decoded.");
  }
  if (Interrupt::requested()) return Outcome::kCutShort;
  const std::uint64_t recordSize =
      vxGetPackedSize(input->width(), input->height(), static_cast<unsigned>(options.bits));
  checkRoom(header, isLimited(options) ? limit * recordSize : recordSize);
  // Only now: what cannot be recorded costs nobody an older recording.
  clearTarget(header, options.force, filesRead(options.input));
  return recordInto(header, *input, options, rate, limit);
}

}  // namespace

void addRecord(CLI::App& app, Job& job) {
  const auto [line, options] = addCommand(app, job, "record", "Record a video", runRecord);
  line.add_option("INPUT", options.input,
                  "video file, image pattern (f_%04d.png), camera (/dev/video0), or -")
      ->required();
  line.add_option("OUT", options.output, "header file to write (.kpf)")->required();
  line.add_option("--bits", options.bits, "bits a pixel: 8 or 12")
      ->check(CLI::IsMember({8, 12}))
      ->capture_default_str();
  line.add_option("--raw", options.raw,
                  "the input is bare frames: WIDTHxHEIGHT:gray8, :gray12le or :gray16le");
  line.add_option("--frames", options.frames, "frames to record at most")
      ->check(CLI::Range(1U, 0xFFFFFFFFU));
  line.add_option("--duration", options.duration, "seconds to record at most")
      ->check(CLI::PositiveNumber);
  line.add_option("--rate", options.rate, "frames per second instead of the input's")
      ->check(CLI::PositiveNumber);
  line.add_option("--start", options.start, "time of the first frame: 2026-11-21T05:00:00Z");
  line.add_option("--text", options.text, "text to keep in the header file (text5)");
  line.add_option("--note", options.note, "second text to keep there (text2)");
  line.add_flag("--fill-gaps", options.fillGaps,
                "placeholders where the input's time stamps skip frames");
  line.add_flag("--force", options.force, "replace another recording");
  line.add_flag("--quiet", options.quiet, "no progress, no summary");
  addFooter(line, "kpf record street.avi clip.kpf --bits 12",
            {"every frame is on disk, up to the end, the limit or Ctrl-C",
             "the input is damaged or ended early, or the disk is full", kNotBegunText});
}

}  // namespace KPF_TOOL

// kpf record: a video becomes a recording.
#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
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

constexpr unsigned kLongestSide = 0xFFFF;  // pixels; the header has 16 bits for each side

struct RecordOptions {
  std::string input;         // whatever FFmpeg opens; "-" standard input
  std::string output;        // header file
  int bits = 8;              // 8 or 12
  std::uint64_t frames = 0;  // 0: as many as the input holds
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
  if (!options.force) clearTarget(header, false);
  return header;
}

std::unique_ptr<FrameSource> openInput(const RecordOptions& options) {
  auto input = openMedia(options.input, options.bits == 8 ? Samples::k8Bit : Samples::k16Bit);
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
  return whole;
}

/// Decodes the whole input once: containers do not tell reliably how many frames they hold.
std::uint64_t countFrames(const RecordOptions& options, double rate) {
  const auto input = openMedia(options.input, Samples::k8Bit);
  Timeline timeline(options.fillGaps, rate);
  std::uint64_t count = 0;
  while (!Interrupt::requested() && input->next()) count = timeline.placeOf(input->time()) + 1;
  return count;
}

/// The number to announce. @throws ToolError when it cannot be known.
std::uint64_t framesWanted(const RecordOptions& options, double rate) {
  if (options.frames > 0) return options.frames;
  if (playsOnce(options.input)) {
    throw ToolError(Outcome::kWrongUsage,
                    "the frames of a camera or a pipe cannot be counted beforehand",
                    "Give their number with --frames.");
  }
  const std::uint64_t count = countFrames(options, rate);
  if (count > 0) return count;
  throw ToolError(Outcome::kUnreadableInput, fmt::format("{} holds no frames", options.input),
                  "Give a video that can be decoded.");
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

/// Prints the last line. @param complaints whether the library logged anything.
Outcome conclude(const Recorder& recorder, std::uint64_t frames, const std::string& header,
                 bool complaints, const RecordOptions& options) {
  const std::uint64_t onDisk = recordsOnDisk(header);
  if (onDisk == frames && !complaints) {
    if (!options.quiet) {
      fmt::print("{}: {} recorded, {}\n", escaped(header), countText(frames, "frame"),
                 countText(recorder.placeholders(), "placeholder"));
    }
    return Outcome::kDone;
  }
  const char* why = "the input ended early";
  if (complaints) why = "the files could not be written, is the disk full?";
  if (Interrupt::requested()) why = "interrupted";
  fmt::print(stderr, "kpf: {}: {} of {} are on disk: {}\n", escaped(header), onDisk,
             countText(frames, "frame"), why);
  fmt::print(stderr, "What is there can be read; kpf verify tells what is missing.\n");
  return complaints ? Outcome::kWriteFailed : Outcome::kCutShort;
}

/// Records into files that are known to be free. @throws ToolError when they cannot be begun.
Outcome recordInto(const std::string& header, FrameSource& input, const RecordOptions& options,
                   double rate, std::uint64_t frames) {
  CapturedOutput captured;
  LibraryStream stream(header, configurationFor(input, options, rate, frames));
  if (!stream.isOpen()) {
    captured.release();
    throw ToolError(Outcome::kRefused, fmt::format("cannot begin {}", escaped(header)),
                    "See the lines above.");
  }
  Recorder recorder(input, stream, frames, Timeline(options.fillGaps, rate));
  {
    Progress progress(options.quiet, frames);
    recorder.run([&captured] { return Interrupt::requested() || captured.any(); },
                 [&progress](std::uint64_t written) { progress.show(written); });
  }
  // Closing writes the status file; what it logs about that is passed on, but is no lost frame.
  const bool complaints = captured.any();
  stream.close();
  captured.release();
  return conclude(recorder, frames, header, complaints, options);
}

Outcome runRecord(const RecordOptions& options) {
  const Interrupt interrupt;
  const std::string header = checkedHeader(options);
  const auto input = openInput(options);
  const double rate = rateOf(*input, options);
  const std::uint64_t frames = framesWanted(options, rate);
  if (Interrupt::requested()) return Outcome::kCutShort;
  // Only now: an input that cannot be read costs nobody an older recording.
  clearTarget(header, options.force);
  const std::uint64_t recordSize =
      vxGetPackedSize(input->width(), input->height(), static_cast<unsigned>(options.bits));
  checkRoom(header, frames * recordSize);
  return recordInto(header, *input, options, rate, frames);
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
  line.add_option("--frames", options.frames, "frames to record; needed for cameras and -")
      ->check(CLI::Range(1U, 0xFFFFFFFFU));
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
            {"every frame is on disk",
             "cut short: interrupted, the input ended early, or the disk is full", kNotBegunText});
}

}  // namespace KPF_TOOL

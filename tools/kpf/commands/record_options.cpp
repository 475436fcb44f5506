#include "tools/kpf/commands/record_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <regex>

#include "tools/kpf/commands/command.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr double kHighestWholeRate = std::numeric_limits<int>::max();  // as the format holds it

// Of --duration, in seconds: from one frame to decades.
constexpr double kShortest = 1e-9;
constexpr double kLongest = 1e9;

// Announced where nobody knows the number, and set right in the end: a recorder that is killed on
// the way leaves a recording that lacks frames, which is what it is.
constexpr unsigned kMostFrames = LibraryStream::kFramesUnknown;

}  // namespace

void addRecordOptions(CLI::App& line, RecordOptions& options) {
  line.add_option("INPUT", options.input,
                  "video file, image pattern (f_%04d.png), /dev/video0, genicam:[ID|ADDRESS], or -")
      ->required();
  line.add_option("OUT", options.output, "header file to write (.kpf)")->required();
  line.add_option("--bits", options.bits,
                  "bits a pixel: 8 or 12; of a GenICam camera those of its format, else 8")
      ->check(CLI::IsMember({8, 12}));
  line.add_option("--raw", options.raw,
                  "the input is bare frames: WIDTHxHEIGHT:gray8, :gray12le or :gray16le");
  line.add_option("--frames", options.frames, "frames to record at most")
      ->check(CLI::Range(1U, 0xFFFFFFFFU))
      ->transform(decimal());
  line.add_option("--duration", options.duration, "seconds to record at most")
      ->check(between(kShortest, kLongest));
  line.add_option("--rate", options.rate, "frames per second instead of the input's")
      ->check(between(1, kHighestWholeRate));
  line.add_option("--start", options.start, "time of the first frame: 2026-11-21T05:00:00Z");
  line.add_option("--text", options.text, "text to keep in the header file (text5)");
  line.add_option("--note", options.note, "second text to keep there (text2)");
  line.add_flag("--checksums", options.checksums,
                "keep a checksum of each frame, which verify compares");
  line.add_flag("--fill-gaps", options.fillGaps,
                "placeholders where the input's time stamps skip frames");
  line.add_flag("--force", options.force, "replace another recording");
  line.add_flag("--quiet", options.quiet, "no progress, no summary");
  addJson(line, options.json);
  addLiveOptions(line, options.live);
}

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

double wholeRate(const RecordOptions& options, double inputs, RecordReport& report) {
  const double rate = options.rate > 0 ? options.rate : inputs;
  const double whole = std::round(rate);
  if (whole < 1 || whole > std::numeric_limits<int>::max()) {
    throw ToolError(Outcome::kWrongUsage,
                    rate > 0 ? fmt::format("{:g} frames/s cannot be recorded: {}", rate,
                                           "the format holds whole rates from 1 on")
                             : fmt::format("{} tells no frame rate", escaped(options.input)),
                    "Give one with --rate.");
  }
  if (whole != rate) {
    report.remark(fmt::format("{:g} frames/s are recorded as {:g}: the format holds whole rates",
                              rate, whole));
  }
  if (options.rate == 0 && tellsNoRate(options.input, hintsOf(options))) {
    report.remark(fmt::format("{} tells no frame rate: {:g} is taken, --rate chooses",
                              escaped(options.input), whole));
  }
  return whole;
}

std::uint64_t frameLimit(const RecordOptions& options, double rate) {
  double limit = kMostFrames;
  if (options.frames > 0) limit = std::min(limit, static_cast<double>(options.frames));
  if (options.duration > 0) {
    limit = std::min(limit, std::max(1.0, std::round(options.duration * rate)));
  }
  return static_cast<std::uint64_t>(limit);
}

std::string fitted(const std::string& text, const std::string& option, std::size_t bytes,
                   RecordReport& report) {
  if (text.size() <= bytes) return text;
  std::size_t end = bytes;
  // The bytes of a letter that follow its first one begin with 10.
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  report.remark(fmt::format("{} is cut to {} of its {} bytes: its field has {}", option, end,
                            text.size(), bytes));
  return text.substr(0, end);
}

}  // namespace KPF_TOOL

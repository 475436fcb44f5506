#include "tools/kpf/commands/record.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/media/media_input.h"
#include "tools/kpf/recording/start_time.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/terminal/recording_text.h"
#include "tools/kpf/terminal/session.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kRowAlignment = 4;  // bytes; the library takes rows padded to a multiple

/// Tells the place of each frame: the next one, or, where gaps are filled, that of its time.
class Timeline {
 public:
  Timeline(bool fillGaps, double rate) : fillGaps_(fillGaps), rate_(rate) {}

  std::uint64_t placeOf(const MediaInput& input) {
    const std::uint64_t next = frames_++;
    const auto time = input.time();
    if (!fillGaps_ || !time) return place_ = next == 0 ? 0 : place_ + 1;
    if (next == 0) first_ = *time;
    const double due = std::round((*time - first_) * rate_);
    // Never backwards, and never two frames at one place.
    const std::uint64_t earliest = next == 0 ? 0 : place_ + 1;
    return place_ = std::max(earliest, due > 0 ? static_cast<std::uint64_t>(due) : 0);
  }

 private:
  bool fillGaps_;
  double rate_;
  double first_ = 0;
  std::uint64_t frames_ = 0;
  std::uint64_t place_ = 0;
};

double rateOf(const MediaInput& input, const RecordOptions& options) {
  const double rate = options.rate > 0 ? options.rate : input.frameRate();
  const double whole = std::round(rate);
  if (whole < 1 || whole > std::numeric_limits<int>::max()) {
    throw ToolError(kWrongOrUnreadable, fmt::format("{} tells no frame rate", options.input),
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
  MediaInput input(options.input, Samples::k8Bit);
  Timeline timeline(options.fillGaps, rate);
  std::uint64_t count = 0;
  while (!Interrupt::requested() && input.next()) count = timeline.placeOf(input) + 1;
  return count;
}

std::uint64_t framesWanted(const RecordOptions& options, double rate) {
  if (options.frames > 0) return options.frames;
  if (MediaInput::playsOnce(options.input)) {
    throw ToolError(kWrongOrUnreadable,
                    "the frames of a camera or a pipe cannot be counted beforehand",
                    "Give their number with --frames.");
  }
  const std::uint64_t count = countFrames(options, rate);
  if (count > 0) return count;
  throw ToolError(kWrongOrUnreadable, fmt::format("{} holds no frames", options.input),
                  "Give a video that can be decoded.");
}

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationFor(const MediaInput& input,
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

/// A stream of the library that is closed whatever happens.
class Stream {
 public:
  Stream(const std::string& name, const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration)
      : handle_(vxCreatePackStreamer(name, configuration)) {}
  ~Stream() { close(); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  bool isOpen() const { return handle_ != 0; }
  unsigned handle() const { return handle_; }
  void close() {
    if (handle_ != 0) vxClosePackStreamer(handle_);
    handle_ = 0;
  }

 private:
  unsigned handle_;
};

/// Feeds the stream until it is full, the input ends, the user stops or the library complains.
class Recorder {
 public:
  Recorder(MediaInput& input, unsigned stream, std::uint64_t frames, const Timeline& timeline)
      : input_(input),
        stream_(stream),
        frames_(frames),
        timeline_(timeline),
        stride_((input.width() * bytesOf(input.samples()) + kRowAlignment - 1) / kRowAlignment *
                kRowAlignment),
        image_(stride_ * input.height()) {}

  void run(const LibraryWords& words, Progress& progress) {
    while (written_ < frames_ && !Interrupt::requested() && !words.any() && input_.next()) {
      const std::uint64_t place = timeline_.placeOf(input_);
      while (written_ < place && written_ < frames_) {
        vxAddPlaceholder(stream_);
        ++written_;
        ++placeholders_;
      }
      if (written_ == frames_) break;
      input_.copyTo(image_.data(), stride_);
      vxAddTiffImageData(stream_, image_.data());
      progress.show(++written_);
    }
  }

  std::uint64_t written() const { return written_; }
  std::uint64_t placeholders() const { return placeholders_; }

 private:
  MediaInput& input_;
  unsigned stream_;
  std::uint64_t frames_;
  Timeline timeline_;
  std::size_t stride_;
  std::vector<unsigned char> image_;
  std::uint64_t written_ = 0;
  std::uint64_t placeholders_ = 0;
};

/// Looks at the files themselves: what the writer believes is no proof.
std::uint64_t recordsOnDisk(const std::string& header) {
  const KPF_READER::Recording recording(header, KPF_READER::Access::kSparse);
  return recording.recordCount();
}

int conclude(const Recorder& recorder, std::uint64_t frames, const std::string& header,
             bool complaints, const RecordOptions& options) {
  const std::uint64_t onDisk = recordsOnDisk(header);
  if (onDisk == frames && !complaints) {
    if (!options.quiet) {
      fmt::print("{}: {} recorded, {}\n", escaped(header), countText(frames, "frame"),
                 countText(recorder.placeholders(), "placeholder"));
    }
    return kDone;
  }
  const char* why = "the input ended early";
  if (complaints) why = "the files could not be written, is the disk full?";
  if (Interrupt::requested()) why = "interrupted";
  fmt::print(stderr, "kpf: {}: {} of {} are on disk: {}\n", escaped(header), onDisk,
             countText(frames, "frame"), why);
  fmt::print(stderr, "What is there can be read; kpf verify tells what is missing.\n");
  return kProblems;
}

}  // namespace

int runRecord(const RecordOptions& options) {
  const Interrupt interrupt;
  const std::string header = headerPath(options.output);
  parseStartTime(options.start);
  if (!options.force) clearTarget(header, false);
  MediaInput input(options.input, options.bits == 8 ? Samples::k8Bit : Samples::k16Bit);
  if (input.width() > 0xFFFF || input.height() > 0xFFFF) {
    throw ToolError(kWrongOrUnreadable, "frames of more than 65535 rows or columns do not fit",
                    "Make the video smaller.");
  }
  const double rate = rateOf(input, options);
  const std::uint64_t frames = framesWanted(options, rate);
  if (Interrupt::requested()) return kProblems;
  clearTarget(header, options.force);
  const std::uint64_t recordSize =
      vxGetPackedSize(input.width(), input.height(), static_cast<unsigned>(options.bits));
  checkRoom(header, frames * recordSize);

  LibraryWords words;
  Stream stream(header, configurationFor(input, options, rate, frames));
  if (!stream.isOpen()) {
    words.release();
    throw ToolError(kWrongOrUnreadable, fmt::format("cannot begin {}", escaped(header)),
                    "See the lines above.");
  }
  Recorder recorder(input, stream.handle(), frames, Timeline(options.fillGaps, rate));
  {
    Progress progress(options.quiet, frames);
    recorder.run(words, progress);
  }
  const bool complaints = words.any();
  stream.close();
  words.release();
  return conclude(recorder, frames, header, complaints, options);
}

}  // namespace KPF_TOOL

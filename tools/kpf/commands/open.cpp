#include "tools/kpf/commands/open.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <limits>
#include <utility>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/files/image_pattern.h"
#include "tools/kpf/frames/raw_output.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/plain/plain_output.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {

bool isRecording(const std::string& name) { return lowerCase(name).ends_with(".kpf"); }

FileIds filesOfRecording(const std::string& name) {
  const KPF_READER::Recording recording(name, KPF_READER::Access::kSparse);
  std::vector<std::string> files = filesOf(headerPath(name));
  for (const auto& file : recording.divFiles()) files.push_back(file.path);
  files.push_back(recording.path());
  return FileIds(files);
}

ToolError noSuchFrames(const std::string& name, const std::string& why) {
  return {Outcome::kWrongUsage, fmt::format("{} holds no such frames: {}", escaped(name), why),
          "Choose other frames with --from and --to."};
}

std::unique_ptr<FrameSource> openFrames(const std::string& name, Samples samples) {
  return isRecording(name) ? openRecordedFrames(name, samples) : openMedia(name, samples);
}

std::unique_ptr<FrameSource> openRecordedFrames(const std::string& name, Samples samples) {
  auto source = openRecording(name, samples);
  // Whoever sizes memory by what a header claims has a record before.
  if (source->frameCount() == 0) throw noSuchFrames(name, "it has none at all");
  if (source->frameSize() == 0) throw noSuchFrames(name, "its frames have no pixels");
  return source;
}

FileIds filesRead(const std::string& name) {
  if (isRecording(name)) return filesOfRecording(name);
  std::vector<std::string> files = {name == "-" ? "/dev/stdin" : name};
  if (const auto pattern = ImagePattern::parse(name)) {
    for (const std::uint64_t number : pattern->numbersThere()) {
      files.push_back(pattern->nameOf(number));
    }
  }
  return FileIds(files);
}

std::unique_ptr<PictureOutput> openOutput(const Destination& destination,
                                          const PictureFormat& format) {
  if (destination.name != "-") {
    if (format.y4m) {
      throw ToolError(Outcome::kWrongUsage, "--y4m is for frames on -",
                      "Give a name that ends in .y4m, without it.");
    }
    auto plain = openPlainOutput(destination, format);
    return plain != nullptr ? std::move(plain) : openEncodedOutput(destination, format);
  }
  if (destination.input.holds(STDOUT_FILENO)) {
    throw ToolError(Outcome::kRefused, "standard output is what is read",
                    "Send the frames into another file.");
  }
  return openRawOutput(format, format.y4m ? y4mFraming(format) : Framing{});
}

bool isBare(const std::string& output, bool y4m) {
  return (output == "-" && !y4m) || lowerCase(output).ends_with(".raw");
}

std::optional<std::uint64_t> framesAskedFor(const FrameSource& source, const FrameRange& range,
                                            const std::string& name) {
  if (range.to && *range.to < range.first()) {
    throw noSuchFrames(name, fmt::format("{} is before {}", *range.to, range.first()));
  }
  const std::uint64_t count = source.frameCount();
  if (count == 0) {
    if (!range.to) return std::nullopt;
    return range.framesOf(std::numeric_limits<std::uint64_t>::max());
  }
  const std::uint64_t frames = range.framesOf(count);
  if (frames > 0) return frames;
  throw noSuchFrames(name, fmt::format("it has {}, from 0 on", count));
}

std::string beyondEnd(const FrameRange& range, std::uint64_t count) {
  if (!range.to || *range.to < count) return "";
  return fmt::format("--to {} is beyond the end: the last frame is {}", *range.to, count - 1);
}

void remark(bool quiet, const std::string& line) {
  if (!quiet && !line.empty()) tell("kpf: {}\n", line);
}

Outcome endOf(const std::string& flaw, const std::string& name) {
  if (flaw.empty()) return Outcome::kDone;
  tell("kpf: {}: {}\n", escaped(name), flaw);
  return Outcome::kCutShort;
}

}  // namespace KPF_TOOL

#include "tools/kpf/commands/export.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/media/media_output.h"
#include "tools/kpf/terminal/session.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

/// How many frames of the recording the range asks for. @throws ToolError when that is none.
std::uint64_t framesIn(const FrameRange& range, std::uint64_t count) {
  const std::uint64_t end = range.to ? std::min(count, *range.to + 1) : count;
  if (range.first() < end) return end - range.first();
  throw ToolError(kWrongOrUnreadable,
                  fmt::format("the recording holds no such frames: it has {}, from 0 on", count),
                  "See kpf info for what is there, and choose --from and --to.");
}

bool severalIntoOneImage(const std::string& output, std::uint64_t frames) {
  const bool image =
      output.ends_with(".png") || output.ends_with(".tif") || output.ends_with(".tiff");
  return image && frames > 1 && output.find('%') == std::string::npos;
}

}  // namespace

int runExport(const ExportOptions& options) {
  const Interrupt interrupt;
  const Samples samples = samplesOf(options.file);
  const auto source = openRecording(options.file, samples);
  const std::uint64_t frames = framesIn(options.range, source->frameCount());
  if (severalIntoOneImage(options.output, frames)) {
    throw ToolError(kWrongOrUnreadable, fmt::format("{} frames do not go into one image", frames),
                    "Put a pattern into the name, like frame_%06d.png.");
  }
  const double rate = source->frameRate() > 0 ? source->frameRate() : 25;
  const auto output = openOutput(
      options.output, {source->width(), source->height(), samples, rate, options.range.first()});
  std::vector<unsigned char> rows(std::size_t{source->width()} * source->height() *
                                  bytesOf(samples));
  source->skip(options.range.first());
  Progress progress(options.quiet, frames);
  std::uint64_t done = 0;
  while (done < frames && !Interrupt::requested() && source->next(rows.data())) {
    output->add(rows.data());
    progress.show(++done);
  }
  output->finish();
  if (done == frames) return kDone;
  fmt::print(stderr, "kpf: {} of {} frames exported: interrupted\n", done, frames);
  return kProblems;
}

}  // namespace KPF_TOOL

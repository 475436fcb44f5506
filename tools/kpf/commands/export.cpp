// kpf export: a recording becomes a video, images, or raw frames in a pipe.
#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"

namespace KPF_TOOL {
namespace {

constexpr double kRateOfNone = 25;  // of videos from recordings that tell no frame rate

struct ExportOptions {
  std::string file;    // header file
  std::string output;  // see openOutput
  FrameRange range;
  bool y4m = false;    // in a pipe
  bool force = false;  // replace files that are there
  bool quiet = false;
};

std::unique_ptr<PictureOutput> openOutputFor(const FrameSource& source, std::uint64_t frames,
                                             const ExportOptions& options) {
  const double rate = source.frameRate() > 0 ? source.frameRate() : kRateOfNone;
  return openOutput({options.output, options.force, filesOfRecording(options.file)},
                    {source.width(), source.height(), source.samples(), rate, options.range.first(),
                     frames, options.y4m});
}

/// @return how many of `frames` frames went out before the user wanted to stop.
std::uint64_t copyFrames(FrameSource& source, PictureOutput& output, const ExportOptions& options,
                         std::uint64_t frames) {
  std::vector<unsigned char> rows(source.frameSize());
  source.skip(options.range.first());
  Progress progress(options.quiet, frames);
  std::uint64_t done = 0;
  while (done < frames && !Interrupt::requested() && source.next()) {
    source.copyTo(rows.data(), source.rowSize());
    output.add(rows.data());
    progress.show(++done);
  }
  // Also after an interruption: what is there can be played.
  if (done > 0) output.finish();
  return done;
}

Outcome runExport(const ExportOptions& options) {
  const Interrupt interrupt;
  const auto source = openRecordedFrames(options.file, samplesOf(options.file));
  const std::uint64_t frames = framesAskedFor(*source, options.range, options.file).value();
  const auto output = openOutputFor(*source, frames, options);
  remark(options.quiet, beyondEnd(options.range, source->frameCount()));
  remark(options.quiet, output->remark());
  const std::uint64_t done = copyFrames(*source, *output, options, frames);
  if (done == frames) return endOf(*source, options.file);
  fmt::print(stderr, "kpf: {} of {} frames exported: interrupted\n", done, frames);
  return Outcome::kCutShort;
}

}  // namespace

void addExport(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "export", "Turn a recording into video or images", runExport);
  line.add_option("FILE", options.file, "header file (.kpf)")->required();
  line.add_option("OUT", options.output,
                  ".mkv lossless, .mp4 for viewing, frame_%06d.png or .tif, - raw")
      ->required();
  addRange(line, options.range);
  addY4m(line, options.y4m);
  line.add_flag("--force", options.force, "replace files that are there");
  line.add_flag("--quiet", options.quiet, "no progress");
  addFooter(line, "kpf export clip.kpf frame_%06d.tif --from 100 --to 199",
            {"every frame that was asked for is there", kCutShortText, kNotBegunText});
}

}  // namespace KPF_TOOL

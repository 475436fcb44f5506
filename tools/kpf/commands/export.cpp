// kpf export: a recording becomes a video, images, or raw frames in a pipe.
#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/lost_list.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/frames/frames_before.h"
#include "tools/kpf/frames/lost_frames.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr double kRateOfNone = 25;  // of videos from recordings that tell no frame rate

struct ExportOptions {
  std::string file;    // header file
  std::string output;  // see openOutput
  FrameRange range;
  bool y4m = false;    // in a pipe
  std::string lost;    // see lostShownFor
  bool force = false;  // replace files that are there
  bool quiet = false;
};

PictureFormat formatOf(const FrameSource& source, std::uint64_t frames,
                       const ExportOptions& options) {
  const double rate = isShowableRate(source.frameRate()) ? source.frameRate() : kRateOfNone;
  return {source.width(),        source.height(), source.samples(), rate,
          options.range.first(), frames,          options.y4m};
}

/// What to say of a frame rate that no video holds.
std::string rateRemark(const FrameSource& source, const PictureOutput& output,
                       const std::string& name) {
  const double rate = source.frameRate();
  if (isShowableRate(rate) || !output.tellsRate()) return "";
  const std::string told =
      rate == 0 ? "no frame rate" : fmt::format("an impossible frame rate: {:g}", rate);
  return fmt::format("{} tells {}; {:g} is taken", escaped(name), told, kRateOfNone);
}

/// The frames on their way out, and what is shown for those that were lost.
class Copy {
 public:
  Copy(FrameSource& source, PictureOutput& output, const ExportOptions& options)
      : source_(source),
        output_(output),
        options_(options),
        lost_(lostShownFor(options.lost, isBare(options.output, options.y4m))) {}

  /// @return how many of `frames` frames were gone through before the user wanted to stop.
  std::uint64_t run(std::uint64_t frames) {
    const std::uint64_t first = options_.range.first();
    source_.skip(first);
    Progress progress(options_.quiet, frames);
    std::uint64_t done = 0;
    for (; done < frames && !Interrupt::requested() && source_.next(); progress.show(++done)) {
      if (source_.lost()) {
        addLost(first + done);
      } else {
        add();
      }
    }
    // Also after an interruption: what is there can be played.
    if (shown_) output_.finish();
    return done;
  }

  const LostFrames& lost() const { return lost_; }
  bool anyShown() const { return shown_; }

 private:
  void add() {
    // Only now that a frame is there: a header alone may claim any size.
    rows_.resize(source_.frameSize());
    source_.copyTo(rows_.data(), source_.rowSize());
    output_.add(rows_.data());
    shown_ = true;
  }

  void addLost(std::uint64_t number) {
    if (rows_.empty()) {
      const auto source = openRecording(options_.file, source_.samples());
      rows_ = frameBefore(*source, number);
      // Another recording may have taken its place.
      rows_.resize(source_.frameSize());
    }
    shown_ = lost_.add(number, output_, rows_.data(), rows_.size()) || shown_;
  }

  FrameSource& source_;
  PictureOutput& output_;
  const ExportOptions& options_;
  LostFrames lost_;
  std::vector<unsigned char> rows_;  // of the last frame that was there
  bool shown_ = false;
};

Outcome runExport(const ExportOptions& options) {
  const Interrupt interrupt;
  const auto source = openRecordedFrames(options.file, samplesOf(options.file));
  const std::uint64_t frames = framesAskedFor(*source, options.range, options.file).value();
  const Destination destination{options.output, options.force, filesOfRecording(options.file)};
  const LostList list(destination);
  const auto output = openOutput(destination, formatOf(*source, frames, options));
  remark(options.quiet, beyondEnd(options.range, source->frameCount()));
  for (const std::string& line : source->remarks()) remark(options.quiet, line);
  remark(options.quiet, output->remark());
  remark(options.quiet, rateRemark(*source, *output, options.file));
  Copy copy(*source, *output, options);
  const std::uint64_t done = copy.run(frames);
  if (!copy.anyShown() && done > 0) throw noSuchFrames(options.file, "all of them were lost");
  list.finish(copy.lost(), options.file, done);
  if (done == frames) return endOf(source->flaw(), options.file);
  tell("kpf: {} of {} frames exported: interrupted\n", done, frames);
  return Outcome::kCutShort;
}

}  // namespace

void addExport(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "export", "Turn a recording into video or images", runExport);
  line.add_option("FILE", options.file, "header file (.kpf)")->required();
  line.add_option("OUT", options.output,
                  ".mkv, .y4m, .raw lossless, .mp4 for viewing, frame_%06d.png, .tif, .pgm, - raw")
      ->required();
  addRange(line, options.range);
  addY4m(line, options.y4m);
  addLost(line, options.lost);
  line.add_flag("--force", options.force, "replace files that are there");
  line.add_flag("--quiet", options.quiet, "no progress");
  addFooter(line, "kpf export clip.kpf frame_%06d.tif --from 100 --to 199",
            {"every frame that was asked for is there", kCutShortText, kNotBegunText});
}

}  // namespace KPF_TOOL

// kpf amplify: small movements become visible.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/analysis/clean_amplifier.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/lost_list.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/frames/amplifier.h"
#include "tools/kpf/frames/comparison.h"
#include "tools/kpf/frames/frames_before.h"
#include "tools/kpf/frames/lost_frames.h"
#include "tools/kpf/frames/motion_limits.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/terminal/captured_output.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr double kHighestGain = 255;  // differences of 1 wrap above it
constexpr double kLowestFrequency = 0.0001;

struct AmplifyOptions {
  std::string input;     // a recording, or whatever FFmpeg opens
  std::string output;    // see openOutput
  double frequency = 1;  // of the motion, in hertz
  double gain = 4;
  double rate = 0;       // frames per second; 0: the input's
  bool compare = false;  // original, reference and amplified frame side by side
  bool clean = false;    // the second way, see CleanAmplifier
  FrameRange range;
  bool y4m = false;    // in a pipe
  std::string lost;    // see lostShownFor
  bool force = false;  // replace files that are there
  bool quiet = false;
};

/// The frame rate to go by. @throws ToolError when the motion cannot be amplified at it.
double checkedRate(const FrameSource& source, const AmplifyOptions& options) {
  const double rate = options.rate > 0 ? options.rate : source.frameRate();
  if (rate <= 0) {
    throw ToolError(Outcome::kWrongUsage,
                    fmt::format("{} tells no frame rate", escaped(options.input)),
                    "Give one with --rate.");
  }
  if (!isShowableRate(rate)) {
    throw ToolError(
        Outcome::kWrongUsage,
        fmt::format("{} tells an impossible frame rate: {:g}", escaped(options.input), rate),
        "Give the true one with --rate.");
  }
  if (options.frequency * 2 > rate) {
    throw ToolError(
        Outcome::kWrongUsage,
        fmt::format("{:g} frames/s do not show a motion of {:g} Hz", rate, options.frequency),
        "Choose a --frequency of at most half the frame rate.");
  }
  // The library counts the samples of a frame in an int,
  const std::uint64_t samples = std::uint64_t{source.width()} * source.height();
  if (samples > std::numeric_limits<int>::max()) {
    throw ToolError(Outcome::kWrongUsage,
                    fmt::format("frames of {} x {} pixels are too large to amplify", source.width(),
                                source.height()),
                    "Make the video smaller.");
  }
  // and the frames of its window, which spans three cycles.
  if (rate / options.frequency * 3 > std::numeric_limits<int>::max()) {
    throw ToolError(Outcome::kWrongUsage, "the window would hold too many frames",
                    "Choose a higher --frequency.");
  }
  return rate;
}

/// Source, amplifier and output, and the frames that go through them.
class AmplifyRun {
 public:
  AmplifyRun(FrameSource& source, const AmplifyOptions& options)
      : source_(source),
        options_(options),
        rate_(checkedRate(source, options)),
        frames_(framesAskedFor(source, options.range, options.input)),
        amplifier_({rate_, options.frequency, static_cast<int>(source.width()),
                    static_cast<int>(source.height()), options.gain}),
        clean_(amplifier_.windowSize(), options.gain),
        wrapping_(options.gain),
        lost_(lostShownFor(options.lost, isBare(options.output, options.y4m))),
        frame_(source.frameSize()),
        reference_(source.frameSize()),
        amplified_(source.frameSize()) {
    if (source.frameCount() > 0) checkWindow(lastOf(source.frameCount()) + 1, Outcome::kWrongUsage);
    PictureFormat format{source.width(),        source.height(), Samples::k8Bit, rate_,
                         options.range.first(), frames_,         options.y4m};
    if (options.compare) {
      comparison_.emplace(
          source.width(), source.height(),
          std::array<std::string, 3>{"ORIGINAL", options.clean ? "MEAN" : "REFERENCE", caption()});
      format.width = comparison_->width();
      format.height = comparison_->height();
    }
    const Destination destination{options.output, options.force, filesRead(options.input)};
    list_.emplace(destination);
    output_ = openOutput(destination, format);
    pictureSize_ = format.rowSize() * format.height;
  }

  /// @return frames written.
  std::uint64_t run() {
    remark(options_.quiet, output_->remark());
    Progress progress(options_.quiet, frames_.value_or(0));
    std::uint64_t number = start();
    source_.skip(number);
    std::uint64_t amplified = number;  // as many as fill a window, were there frames before
    std::uint64_t shown = 0;
    for (; !Interrupt::requested() && !options_.range.endsBefore(number) && source_.next();
         ++number) {
      // The amplifier never sees black that nobody saw: one of them would brighten its window.
      if (!source_.lost()) {
        add();
        ++amplified;
      }
      if (options_.range.holds(number) && show(number)) progress.show(++shown);
    }
    // Nothing is replaced by a video without frames, or by one that is only copied.
    if (shown == 0) return 0;
    if (!Interrupt::requested()) {
      checkWindow(amplified, Outcome::kCutShort);
      end_ = number;
    }
    output_->finish();
    list_->finish(lost_, options_.input, number - options_.range.first());
    return shown;
  }

  /// What the user should know of the frames that were written.
  std::vector<std::string> remarks() const {
    return {end_ ? beyondEnd(options_.range, *end_) : "", wrapping_.remark()};
  }

 private:
  std::string caption() const {
    return fmt::format("{} {:g}X AT {:g} HZ", options_.clean ? "CLEAN," : "AMPLIFIED",
                       options_.gain, options_.frequency);
  }

  /// The present frame, in the way that was asked for.
  void add() {
    source_.copyTo(frame_.data(), source_.rowSize());
    amplifier_.add(frame_);
    reference_ = amplifier_.reference();
    amplified_ = amplifier_.amplified();
    if (!amplifier_.available()) return;
    if (options_.clean) {
      clean_.correct(frame_, amplifier_.reference(), reference_);
      clean_.amplify(frame_, amplifier_.reference(), amplified_);
    } else {
      wrapping_.add(frame_, reference_);
    }
  }

  std::uint64_t lastOf(std::uint64_t count) const {
    return std::min(options_.range.to.value_or(count - 1), count - 1);
  }

  /// @param end the number behind the last frame. @throws ToolError when none is amplified.
  void checkWindow(std::uint64_t end, Outcome outcome) const {
    const auto answer = tooFewFrames(rate_, amplifier_.fillingFrames() + 1, end);
    if (answer) throw ToolError(outcome, answer->problem, answer->advice);
  }

  /// The window is filled from the frames before the first one that is asked for.
  std::uint64_t start() const {
    const std::uint64_t first = options_.range.first();
    const std::uint64_t before = amplifier_.fillingFrames();
    if (!isRecording(options_.input)) return first - std::min(first, before);
    const auto source = openRecording(options_.input, Samples::k8Bit);
    return startOfFramesBefore(*source, first, before);
  }

  /// @return whether there is something to show for the present frame.
  bool show(std::uint64_t number) {
    if (source_.lost()) return lost_.add(number, *output_, picture(), pictureSize_);
    output_->add(picture());
    return true;
  }

  const unsigned char* picture() {
    if (!comparison_) return amplified_.data();
    return comparison_->of({frame_.data(), reference_.data(), amplified_.data()});
  }

  FrameSource& source_;
  const AmplifyOptions& options_;
  double rate_;
  std::optional<std::uint64_t> frames_;  // to be written; nothing where nobody knows
  Amplifier amplifier_;
  CleanAmplifier clean_;
  Wrapping wrapping_;
  LostFrames lost_;
  std::optional<std::uint64_t> end_;  // the number behind the last frame, once that is known
  std::vector<unsigned char> frame_, reference_, amplified_;
  std::optional<Comparison> comparison_;  // nothing where only the amplified frame is wanted
  std::optional<LostList> list_;
  std::unique_ptr<PictureOutput> output_;
  std::size_t pictureSize_ = 0;
};

Outcome runAmplify(const AmplifyOptions& options) {
  const Interrupt interrupt;
  const auto source = openFrames(options.input, Samples::k8Bit);
  AmplifyRun job(*source, options);
  const CapturedOutput captured;  // from here on standard output is the library's
  const std::uint64_t shown = job.run();
  if (Interrupt::requested()) {
    tell("kpf: interrupted after {} frames\n", shown);
    return Outcome::kCutShort;
  }
  for (const std::string& line : job.remarks()) remark(options.quiet, line);
  if (shown > 0) return endOf(source->flaw(), options.input);
  throw noSuchFrames(options.input, "it ends before them");
}

}  // namespace

void addAmplify(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "amplify", "Make small movements visible", runAmplify);
  line.add_option("INPUT", options.input, "recording (.kpf), or what record takes")->required();
  line.add_option("OUT", options.output,
                  ".mkv, .y4m, .raw or .mp4, frame_%06d.png, .tif or .pgm, - raw")
      ->required();
  line.add_option("--frequency", options.frequency, "of the motion, in hertz")
      ->check(between(kLowestFrequency, kHighestRate / 2))
      ->capture_default_str();
  line.add_option("--gain", options.gain, "on what differs from the reference")
      ->check(between(0, kHighestGain))
      ->capture_default_str();
  line.add_option("--rate", options.rate, "frames per second instead of the input's")
      ->check(between(kLowestRate, kHighestRate));
  line.add_flag("--compare", options.compare, "original, reference, amplified side by side");
  line.add_flag("--clean", options.clean, "only what moves: darker counts too, nothing wraps");
  addRange(line, options.range);
  addY4m(line, options.y4m);
  addLost(line, options.lost);
  line.add_flag("--force", options.force, "replace files that are there");
  line.add_flag("--quiet", options.quiet, "no progress");
  addFooter(line, "kpf amplify clip.kpf moving.mp4 --frequency 5 --gain 8 --compare",
            {"every frame that was asked for is there", kCutShortText, kNotBegunText});
}

}  // namespace KPF_TOOL

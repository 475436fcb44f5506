#include "tools/kpf/commands/amplify.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <new>
#include <vector>

#include "tools/kpf/frames/canvas.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/media/media_output.h"
#include "tools/kpf/terminal/session.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kGap = 8;     // pixels between pictures that are compared
constexpr unsigned kMargin = 7;  // pixels around a caption

/// One amplifier of the library and the buffers around it.
class Amplifier {
 public:
  Amplifier(const FrameSource& source, const AmplifyOptions& options, double rate)
      : size_(std::size_t{source.width()} * source.height()), reference_(size_), amplified_(size_) {
    const VXP_MA_CONFIGURATION parameters{rate, options.frequency, static_cast<int>(source.width()),
                                          static_cast<int>(source.height()), options.gain};
    handle_ = vxCreateMotionAmplifier(&parameters);
  }
  ~Amplifier() { vxCloseMotionAmplifier(handle_); }
  Amplifier(const Amplifier&) = delete;
  Amplifier& operator=(const Amplifier&) = delete;

  /// The frames that the window takes before the first one is amplified, that one not counted.
  std::uint64_t fillingFrames() const {
    return static_cast<std::uint64_t>(std::max(vxMAGetRefWindowSize(handle_) - 2, 0));
  }

  /// While the window fills, frame and reference are the frame itself.
  void add(const std::vector<unsigned char>& frame) {
    auto* const taken = static_cast<unsigned char*>(::operator new(size_));
    std::copy(frame.begin(), frame.end(), taken);
    vxMAAddFrame(handle_, taken);
    if (vxMAAvailable(handle_)) {
      vxMAGetFrame(handle_, amplified_.data());
      vxMAGetRefFrame(handle_, reference_.data());
    } else {
      amplified_ = frame;
      reference_ = frame;
    }
  }

  const std::vector<unsigned char>& reference() const { return reference_; }
  const std::vector<unsigned char>& amplified() const { return amplified_; }

 private:
  unsigned handle_ = 0;
  std::size_t size_;
  std::vector<unsigned char> reference_;
  std::vector<unsigned char> amplified_;
};

/// Three frames side by side under their captions.
class Comparison {
 public:
  Comparison(unsigned width, unsigned height, const AmplifyOptions& options)
      : width_(width),
        height_(height),
        canvas_(3 * width + 2 * kGap, height + Canvas::kCaptionHeight) {
    canvas_.write("ORIGINAL", kMargin, kMargin);
    canvas_.write("REFERENCE", width + kGap + kMargin, kMargin);
    canvas_.write(fmt::format("AMPLIFIED {:g}X AT {:g} HZ", options.gain, options.frequency),
                  2 * (width + kGap) + kMargin, kMargin);
  }

  unsigned width() const { return canvas_.width(); }
  unsigned height() const { return canvas_.height(); }

  const unsigned char* of(const std::vector<unsigned char>& frame, const Amplifier& amplifier) {
    const std::vector<unsigned char>* pictures[] = {&frame, &amplifier.reference(),
                                                    &amplifier.amplified()};
    unsigned x = 0;
    for (const auto* picture : pictures) {
      canvas_.place(picture->data(), width_, height_, x, Canvas::kCaptionHeight);
      x += width_ + kGap;
    }
    return canvas_.rows();
  }

 private:
  unsigned width_;
  unsigned height_;
  Canvas canvas_;
};

double rateOf(const FrameSource& source, const AmplifyOptions& options) {
  const double rate = options.rate > 0 ? options.rate : source.frameRate();
  if (rate <= 0) {
    throw ToolError(kWrongOrUnreadable, fmt::format("{} tells no frame rate", options.input),
                    "Give one with --rate.");
  }
  if (options.frequency * 2 > rate) {
    throw ToolError(
        kWrongOrUnreadable,
        fmt::format("{:g} frames/s do not show a motion of {:g} Hz", rate, options.frequency),
        "Choose a --frequency of at most half the frame rate.");
  }
  if (rate / options.frequency * 3 > std::numeric_limits<int>::max()) {
    throw ToolError(kWrongOrUnreadable, "the window would hold too many frames",
                    "Choose a higher --frequency.");
  }
  return rate;
}

}  // namespace

int runAmplify(const AmplifyOptions& options) {
  const Interrupt interrupt;
  const auto source = openFrames(options.input, Samples::k8Bit);
  const double rate = rateOf(*source, options);
  Amplifier amplifier(*source, options, rate);
  Comparison comparison(source->width(), source->height(), options);
  PictureFormat format{source->width(), source->height(), Samples::k8Bit, rate,
                       options.range.first()};
  if (options.compare) {
    format.width = comparison.width();
    format.height = comparison.height();
  }
  const auto output = openOutput(options.output, format);
  const LibraryWords words;  // from here on standard output is the library's

  std::vector<unsigned char> frame(std::size_t{source->width()} * source->height());
  // The window is filled from the frames before the first one that is asked for.
  std::uint64_t number =
      options.range.first() - std::min(options.range.first(), amplifier.fillingFrames());
  source->skip(number);
  Progress progress(options.quiet, source->frameCount());
  std::uint64_t shown = 0;
  bool more = true;
  for (; !Interrupt::requested() && (!options.range.to || number <= *options.range.to); ++number) {
    more = source->next(frame.data());
    if (!more) break;
    amplifier.add(frame);
    if (!options.range.holds(number)) continue;
    output->add(options.compare ? comparison.of(frame, amplifier) : amplifier.amplified().data());
    progress.show(++shown);
  }
  output->finish();
  if (shown == 0 && !Interrupt::requested()) {
    throw ToolError(kWrongOrUnreadable, fmt::format("{} holds no such frames", options.input),
                    "Choose other frames with --from and --to.");
  }
  if (!Interrupt::requested()) return kDone;
  fmt::print(stderr, "kpf: interrupted after {} frames\n", shown);
  return kProblems;
}

}  // namespace KPF_TOOL

#include "tools/kpf/view/live_amplifier.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "tools/kpf/analysis/clean_amplifier.h"
#include "tools/kpf/frames/frames_before.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

constexpr int kWhite = 255;
constexpr double kCyclesOfWindow = 3;
// Windows beyond this are frames of gigabytes; the tool itself has time for them, a page has not.
constexpr double kLargestWindow = 4096;

VXP_MA_CONFIGURATION parametersOf(const FrameSource& source, const Amplification& wanted) {
  const double rate = source.frameRate();
  if (rate <= 0 || wanted.frequency <= 0 || wanted.frequency * 2 > rate) {
    throw ToolError(
        Outcome::kWrongUsage,
        fmt::format("{:g} frames/s do not show a motion of {:g} Hz", rate, wanted.frequency),
        "Choose a frequency of at most half the frame rate.");
  }
  if (rate / wanted.frequency * kCyclesOfWindow > kLargestWindow) {
    throw ToolError(Outcome::kWrongUsage, "the window would hold too many frames",
                    "Choose a higher frequency, or kpf amplify.");
  }
  return {rate, wanted.frequency, static_cast<int>(source.width()),
          static_cast<int>(source.height()), wanted.gain};
}

/// What the gain does to each of the 256 differences that a pixel may have.
std::vector<int> gainsOf(double gain) {
  std::vector<int> gains;
  for (int difference = 0; difference < 256; ++difference) {
    const double product = std::clamp(difference * gain, -1e6, 1e6);
    gains.push_back(static_cast<int>(product));
  }
  return gains;
}

AmplifiedPictures::Picture shared(std::vector<unsigned char> picture) {
  return std::make_shared<const std::vector<unsigned char>>(std::move(picture));
}

}  // namespace

struct LiveAmplifier::Running {
  Running(const Amplification& how, std::uint32_t place)
      : wanted(how),
        source(openRecording(how.recording, Samples::k8Bit)),
        amplifier(parametersOf(*source, how)),
        clean(static_cast<int>(amplifier.fillingFrames()) + 2, how.gain),
        gains(gainsOf(how.gain)),
        frame(source->frameSize()) {
    const auto before = openRecording(how.recording, Samples::k8Bit);
    next =
        static_cast<std::uint32_t>(startOfFramesBefore(*before, place, amplifier.fillingFrames()));
    source->skip(next);
  }

  Amplification wanted;
  std::unique_ptr<FrameSource> source;
  Amplifier amplifier;
  CleanAmplifier clean;  // of the same window: two frames longer than the filling
  std::vector<int> gains;
  std::vector<unsigned char> frame;  // the newest
  std::uint64_t added = 0;           // frames that were not lost
  std::uint32_t next = 0;            // place that the source gives next
  AmplifiedPictures made;            // of the place before that
};

bool LiveAmplifier::windowIsFull() const {
  return running_->added > running_->amplifier.fillingFrames();
}

bool LiveAmplifier::canGoOnTo(const Amplification& wanted, std::uint32_t place) const {
  if (running_ == nullptr || !(running_->wanted == wanted)) return false;
  return place + 1 >= running_->next &&
         place - running_->next + 1 <= running_->amplifier.fillingFrames() + 1;
}

void LiveAmplifier::step() {
  Running& run = *running_;
  if (!run.source->next()) {
    running_.reset();
    throw ToolError(Outcome::kWrongUsage, "there is no such frame", "Choose an earlier one.");
  }
  // The amplifier never sees black that nobody saw.
  if (!run.source->lost()) {
    run.source->copyTo(run.frame.data(), run.source->rowSize());
    run.amplifier.add(run.frame);
    ++run.added;
  }
  ++run.next;
}

AmplifiedPictures LiveAmplifier::libraryPictures() const {
  const Running& run = *running_;
  const auto& reference = run.amplifier.reference();
  AmplifiedPictures made;
  std::vector<unsigned char> marks(run.frame.size(), kUnmarked);
  for (std::size_t i = 0; i < marks.size() && windowIsFull(); ++i) {
    const int difference = std::max(run.frame[i] - reference[i], 0);
    const int gain = run.gains[static_cast<std::size_t>(difference)];
    const bool wraps = gain < 0 || gain > kWhite;
    const bool clips = !wraps && run.frame[i] + gain > kWhite;
    marks[i] = wraps ? kWraps : clips ? kClips : kUnmarked;
    made.wraps += wraps ? 1U : 0U;
    made.clips += clips ? 1U : 0U;
  }
  made.reference = shared(reference);
  made.amplified = shared(run.amplifier.amplified());
  made.marks = shared(std::move(marks));
  return made;
}

AmplifiedPictures LiveAmplifier::cleanPictures() const {
  const Running& run = *running_;
  std::vector<unsigned char> reference = run.frame, amplified = run.frame;
  if (windowIsFull()) {
    run.clean.correct(run.frame, run.amplifier.reference(), reference);
    run.clean.amplify(run.frame, run.amplifier.reference(), amplified);
  }
  AmplifiedPictures made;
  std::vector<unsigned char> marks(run.frame.size(), kUnmarked);
  for (std::size_t i = 0; i < marks.size(); ++i) {
    const double wanted = run.frame[i] + (run.frame[i] - reference[i]) * run.wanted.gain;
    if (wanted > -0.5 && wanted < kWhite + 0.5) continue;
    marks[i] = kClips;
    ++made.clips;
  }
  made.reference = shared(std::move(reference));
  made.amplified = shared(std::move(amplified));
  made.marks = shared(std::move(marks));
  return made;
}

AmplifiedPictures LiveAmplifier::at(const Amplification& wanted, std::uint32_t place) {
  const std::lock_guard lock(mutex_);
  if (!canGoOnTo(wanted, place)) running_ = std::make_shared<Running>(wanted, place);
  Running& run = *running_;
  if (place + 1 == run.next) return run.made;  // asked for once more
  while (running_ != nullptr && running_->next <= place) step();
  running_->made = wanted.clean ? cleanPictures() : libraryPictures();
  running_->made.windowFull = windowIsFull();
  return running_->made;
}

}  // namespace KPF_TOOL

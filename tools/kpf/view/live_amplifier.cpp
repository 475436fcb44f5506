#include "tools/kpf/view/live_amplifier.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

#include "tools/kpf/frames/amplifier.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/frames/frames_before.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/terminal/tool_error.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

constexpr double kCyclesOfWindow = 3;
constexpr double kHighestGain = 255;  // as kpf amplify has it
// Windows beyond this are frames of gigabytes; the tool itself has time for them, a page has not.
constexpr double kLargestWindow = 4096;
// Moments that are kept: a page has about a dozen frames under way.
constexpr std::size_t kMostMoments = 24;
constexpr std::size_t kMomentBytes = std::size_t{48} << 20;

ToolError wrong(const std::string& what, const std::string& advice) {
  return {Outcome::kWrongUsage, what, advice};
}

/// Without a gain: what is amplified is the moment, not the window.
VXP_MA_CONFIGURATION parametersOf(const FrameSource& source, double frequency) {
  const double rate = source.frameRate();
  if (rate <= 0 || frequency <= 0 || frequency * 2 > rate) {
    throw wrong(fmt::format("{:g} frames/s do not show a motion of {:g} Hz", rate, frequency),
                "Choose a frequency of at most half the frame rate.");
  }
  if (rate / frequency * kCyclesOfWindow > kLargestWindow) {
    throw wrong("the window would hold too many frames",
                "Choose a higher frequency, or kpf amplify.");
  }
  return {rate, frequency, static_cast<int>(source.width()), static_cast<int>(source.height()), 0};
}

SharedPicture copied(const std::vector<unsigned char>& picture) {
  return std::make_shared<const std::vector<unsigned char>>(picture);
}

}  // namespace

/// One amplifier of the library on its way through a recording.
class LiveAmplifier::Window {
 public:
  Window(const Amplification& wanted, std::uint32_t place)
      : recording_(wanted.recording),
        frequency_(wanted.frequency),
        source_(openRecording(recording_, Samples::k8Bit)),
        amplifier_(parametersOf(*source_, frequency_)),
        frame_(source_->frameSize()),
        kept_(std::clamp<std::size_t>(kMomentBytes / (2 * frame_.size()), 1, kMostMoments)) {
    const auto before = openRecording(recording_, Samples::k8Bit);
    start_ =
        static_cast<std::uint32_t>(startOfFramesBefore(*before, place, amplifier_.fillingFrames()));
    next_ = start_;
    source_->skip(start_);
  }

  /// Whether it gets there sooner than one that is filled anew.
  bool leadsTo(const Amplification& wanted, std::uint32_t place) const {
    if (wanted.frequency != frequency_) return false;
    if (place < next_) return !moments_.empty() && place >= moments_.front().place;
    return place - next_ <= amplifier_.fillingFrames();
  }

  Moment at(std::uint32_t place) {
    while (next_ <= place) {
      step();
      const bool wanted = next_ == place + 1;
      if (wanted || (isTrue() && next_ + kept_ > place)) keep();
    }
    return moments_[place - moments_.front().place];
  }

 private:
  /// Whether a window that was filled for the present frame would know no more than this one.
  bool isTrue() const { return amplifier_.available() || start_ == 0; }

  void step() {
    if (!source_->next()) openAgain();
    // The amplifier never sees black that nobody saw.
    if (!source_->lost()) {
      source_->copyTo(frame_.data(), source_->rowSize());
      amplifier_.add(frame_);
    }
    ++next_;
  }

  /// The recording may have grown, or made room for another.
  void openAgain() {
    source_ = openRecording(recording_, Samples::k8Bit);
    source_->skip(next_);
    if (source_->frameSize() != frame_.size() || !source_->next()) {
      throw wrong("there is no such frame", "Choose an earlier one.");
    }
  }

  void keep() {
    if (!moments_.empty() && moments_.back().place + 2 != next_) moments_.clear();
    if (moments_.size() == kept_) moments_.pop_front();
    moments_.push_back({next_ - 1, copied(frame_), copied(amplifier_.reference()),
                        amplifier_.available(), amplifier_.windowSize()});
  }

  std::string recording_;
  double frequency_;
  std::unique_ptr<FrameSource> source_;
  Amplifier amplifier_;
  std::vector<unsigned char> frame_;  // the newest that was not lost
  std::size_t kept_;                  // moments at most
  std::deque<Moment> moments_;        // the last ones, without gaps
  std::uint32_t start_ = 0;           // place of the first frame in it
  std::uint32_t next_ = 0;            // place that the source gives next
};

LiveAmplifier::LiveAmplifier() = default;
LiveAmplifier::~LiveAmplifier() = default;

Moment LiveAmplifier::momentAt(const Amplification& wanted, std::uint32_t place) {
  const std::lock_guard lock(mutex_);
  auto& window = windows_[wanted.recording];
  if (window == nullptr || !window->leadsTo(wanted, place)) {
    window.reset();  // first: a window may be gigabytes
    window = std::make_unique<Window>(wanted, place);
  }
  return window->at(place);
}

AmplifiedPictures LiveAmplifier::at(const Amplification& wanted, std::uint32_t place) {
  if (!(wanted.gain >= 0 && wanted.gain <= kHighestGain)) {
    throw wrong("that is no gain", fmt::format("Choose one from 0 to {:g}.", kHighestGain));
  }
  return picturesOf(momentAt(wanted, place), wanted.gain, wanted.clean, wanted.marked);
}

}  // namespace KPF_TOOL

#include "tools/kpf/view/vibration_answer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/analysis/displacement.h"
#include "tools/kpf/analysis/mean_picture.h"
#include "tools/kpf/analysis/peaks.h"
#include "tools/kpf/analysis/picture.h"
#include "tools/kpf/analysis/spectrum.h"
#include "tools/kpf/analysis/transform.h"
#include "tools/kpf/analysis/waveform.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/numbers.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMostPeaks = 5;
constexpr std::uint64_t kMostFrames = 20'000;         // whose curves a page draws at once
constexpr std::uint64_t kMostPixels = 1'000'000'000;  // of all frames: seconds of work

/// The frames of a range, as the analysis takes them.
class Frames {
 public:
  explicit Frames(ShownRecording& recording)
      : recording_(recording),
        header_(recording.header()),
        layout_{header_.width, header_.height,
                header_.packed12 ? Samples::k16Bit : Samples::k8Bit} {}

  const PictureLayout& layout() const { return layout_; }

  /// @return its bytes, valid until the next call; null where it is lost.
  const unsigned char* at(std::uint32_t place) {
    frame_ = recording_.frame(place);
    if (frame_.state != FrameState::kThere) return nullptr;
    if (!header_.packed12) return frame_.record.pixels.data();
    samples_.resize(header_.pixelCount());
    KPF_READER::unpackPixels(header_, frame_.record.pixels, samples_);
    bytes_.clear();
    for (const std::uint16_t sample : samples_) {
      bytes_.push_back(static_cast<unsigned char>(sample));
      bytes_.push_back(static_cast<unsigned char>(sample >> 8));
    }
    return bytes_.data();
  }

 private:
  ShownRecording& recording_;
  const KPF_READER::Header& header_;
  PictureLayout layout_;
  ShownFrame frame_;
  std::vector<std::uint16_t> samples_;
  std::vector<unsigned char> bytes_;
};

Box boxOf(const Request& request, const PictureLayout& layout) {
  const auto values = numbersOf(textOf(request, "box"), 4);
  const Box box{wholeOf(values[0]), wholeOf(values[1]), wholeOf(values[2]), wholeOf(values[3])};
  if (!isInside(box, layout)) {
    throw ToolError(Outcome::kWrongUsage, "the region lies outside the picture",
                    "Choose another one.");
  }
  return box.pixelCount() == 1 ? boxAround(box.x, box.y, layout) : box;
}

Json peaksJson(const Spectrum& spectrum) {
  Json json = Json::array();
  for (const Peak& peak : peaksOf(spectrum, kMostPeaks)) {
    json.push_back({{"frequency", peak.frequency},
                    {"amplitude", peak.amplitude},
                    {"overNoise", peak.overNoise}});
  }
  return json;
}

Json signalJson(const Waveform& waveform, const std::optional<AxisQuality>& quality) {
  const Spectrum spectrum = spectrumOf(waveform);
  Json json{{"values", waveform.values()},
            {"spectrum",
             {{"binWidth", spectrum.binWidth},
              {"resolution", spectrum.resolution},
              {"nyquist", spectrum.nyquist},
              {"amplitudes", spectrum.amplitudes}}},
            {"peaks", peaksJson(spectrum)},
            {"quality", nullptr}};
  if (quality) json["quality"] = {{"shown", quality->shown}, {"error", quality->error}};
  return json;
}

/// First and one behind the last place that are looked at.
struct Range {
  Range(const Request& request, std::uint32_t places, const Box& box) {
    end = std::min(wholeOf(request, "to", places - 1), places - 1) + 1;
    first = std::min(wholeOf(request, "from", 0), end - 1);
    const std::uint64_t most =
        std::clamp<std::uint64_t>(kMostPixels / box.pixelCount(), kFewestFrames, kMostFrames);
    end = static_cast<std::uint32_t>(std::min<std::uint64_t>(end, first + most));
  }
  std::uint32_t first = 0, end = 0;
};

}  // namespace

bool canAnswerVibration(const KPF_READER::Header& header) {
  return header.frameRate > 0 && canTransform();
}

Reply answerVibration(const Request& request, ShownRecording& recording) {
  const std::uint32_t places = recording.places();
  if (!canAnswerVibration(recording.header()) || places < kFewestFrames) {
    throw ToolError(Outcome::kWrongUsage, "there are too few frames, or they tell no rate",
                    "Record more of them.");
  }
  Frames frames(recording);
  const Box box = boxOf(request, frames.layout());
  const Range range(request, places, box);
  MeanPicture mean(frames.layout(), grown(box, Displacement::kMargin, frames.layout()));
  for (std::uint32_t place = range.first; place < range.end; ++place) {
    if (const unsigned char* const frame = frames.at(place)) mean.add(frame);
  }
  const double rate = recording.header().frameRate;
  Waveform level(rate);
  Displacement moved(box, mean, rate);
  for (std::uint32_t place = range.first; place < range.end; ++place) {
    if (const unsigned char* const frame = frames.at(place)) {
      level.add(meanLevel(frame, frames.layout(), box));
      moved.add(frame);
    } else {
      level.addLost();
      moved.addLost();
    }
  }
  return replyWith(Json{{"box", {box.x, box.y, box.width, box.height}},
                        {"rate", rate},
                        {"first", range.first},
                        {"frames", range.end - range.first},
                        {"lost", level.lostFrames()},
                        {"signals",
                         {{"mean", signalJson(level, std::nullopt)},
                          {"x", signalJson(moved.x(), moved.qualityOfX())},
                          {"y", signalJson(moved.y(), moved.qualityOfY())}}}});
}

}  // namespace KPF_TOOL

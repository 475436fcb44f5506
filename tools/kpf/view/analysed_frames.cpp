#include "tools/kpf/view/analysed_frames.h"

#include <algorithm>

#include "tools/kpf/analysis/spectrum.h"
#include "tools/kpf/analysis/transform.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/numbers.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kMostPoints = 20'000;         // whose curves a page draws at once
constexpr std::uint64_t kMostPixels = 1'000'000'000;  // of all frames: seconds of work

}  // namespace

AnalysedFrames::AnalysedFrames(ShownRecording& recording)
    : recording_(recording),
      layout_{recording.header().width, recording.header().height,
              recording.header().packed12 ? Samples::k16Bit : Samples::k8Bit} {}

const unsigned char* AnalysedFrames::at(std::uint32_t place) {
  frame_ = recording_.frame(place);
  if (frame_.state != FrameState::kThere) return nullptr;
  if (layout_.samples == Samples::k8Bit) return frame_.record.pixels.data();
  samples_.resize(layout_.pixelCount());
  KPF_READER::unpackPixels(recording_.header(), frame_.record.pixels, samples_);
  bytes_.resize(layout_.frameSize());
  for (std::size_t i = 0; i < samples_.size(); ++i) {
    bytes_[2 * i] = static_cast<unsigned char>(samples_[i]);
    bytes_[2 * i + 1] = static_cast<unsigned char>(samples_[i] >> 8);
  }
  return bytes_.data();
}

bool canAnalyse(const KPF_READER::Header& header) { return header.frameRate > 0 && canTransform(); }

AnalysedRange::AnalysedRange(const Request& request, ShownRecording& recording,
                             std::size_t pixels) {
  const std::uint32_t places = recording.places();
  if (places > 0) {
    end = std::min(wholeOf(request, "to", places - 1), places - 1) + 1;
    first = std::min(wholeOf(request, "from", 0), end - 1);
  }
  const std::uint64_t most =
      std::clamp<std::uint64_t>(kMostPixels / pixels, kFewestFrames, kMostPoints);
  end = static_cast<std::uint32_t>(std::min<std::uint64_t>(end, first + most));
  if (!canAnalyse(recording.header()) || frames() < kFewestFrames) {
    throw ToolError(Outcome::kWrongUsage, "there are too few frames, or they tell no rate",
                    "Choose more of them.");
  }
}

}  // namespace KPF_TOOL

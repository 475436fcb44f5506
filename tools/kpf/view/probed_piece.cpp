#include "tools/kpf/view/probed_piece.h"

#include <algorithm>

#include "tools/kpf/analysis/spectrum.h"
#include "tools/kpf/analysis/transform.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/numbers.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kMostPoints = 20'000;         // whose curves a page draws at once
constexpr std::uint64_t kMostPixels = 1'000'000'000;  // worked on: seconds
constexpr std::uint64_t kMostRead = 4'000'000'000;    // pixels: seconds too

PictureLayout layoutOf(const KPF_READER::Header& header) {
  return {header.width, header.height, header.packed12 ? Samples::k16Bit : Samples::k8Bit};
}

std::uint64_t mostFrames(std::size_t framePixels, std::size_t pixels) {
  const std::uint64_t most = std::min(kMostPixels / pixels, kMostRead / framePixels);
  return std::clamp<std::uint64_t>(most, kFewestFrames, kMostPoints);
}

}  // namespace

bool canAnalyse(const KPF_READER::Header& header) { return header.frameRate > 0 && canTransform(); }

Probed probedPiece(const Request& request, ShownRecording& recording, std::size_t pixels) {
  const PictureLayout layout = layoutOf(recording.header());
  const std::uint64_t places = recording.places();
  std::uint64_t first = 0, end = 0;  // one behind the last
  if (places > 0) {
    end = std::min<std::uint64_t>(wholeOf(request, "to", UINT32_MAX), places - 1) + 1;
    first = std::min<std::uint64_t>(wholeOf(request, "from", 0), end - 1);
  }
  end = std::min(end, first + mostFrames(layout.pixelCount(), pixels));
  if (!canAnalyse(recording.header()) || end - first < kFewestFrames) {
    throw ToolError(Outcome::kWrongUsage, "there are too few frames, or they tell no rate",
                    "Choose more of them.");
  }
  const auto open = [path = recording.path(), samples = layout.samples] {
    return openRecording(path, samples);
  };
  return {open, layout, recording.header().frameRate, {first, end - 1}, end - first};
}

}  // namespace KPF_TOOL

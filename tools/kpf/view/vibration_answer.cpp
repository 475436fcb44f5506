#include "tools/kpf/view/vibration_answer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/kpf/analysis/displacement.h"
#include "tools/kpf/analysis/mean_picture.h"
#include "tools/kpf/analysis/peaks.h"
#include "tools/kpf/analysis/picture.h"
#include "tools/kpf/analysis/spectrum.h"
#include "tools/kpf/analysis/waveform.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/analysed_frames.h"
#include "tools/kpf/view/numbers.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kMostPeaks = 5;

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

}  // namespace

Reply answerVibration(const Request& request, ShownRecording& recording) {
  AnalysedFrames frames(recording);
  const Box box = boxOf(request, frames.layout());
  const AnalysedRange range(request, recording, box.pixelCount());
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
                        {"frames", range.frames()},
                        {"lost", level.lostFrames()},
                        {"signals",
                         {{"mean", signalJson(level, std::nullopt)},
                          {"x", signalJson(moved.x(), moved.qualityOfX())},
                          {"y", signalJson(moved.y(), moved.qualityOfY())}}}});
}

}  // namespace KPF_TOOL

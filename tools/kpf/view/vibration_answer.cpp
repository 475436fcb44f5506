#include "tools/kpf/view/vibration_answer.h"

#include <optional>

#include "tools/kpf/probing/measurement.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/numbers.h"
#include "tools/kpf/view/probed_piece.h"

namespace KPF_TOOL {
namespace {

Box boxOf(const Request& request, const KPF_READER::Header& header) {
  const PictureLayout layout{header.width, header.height};
  const auto values = numbersOf(textOf(request, "box"), 4);
  const Box box{wholeOf(values[0]), wholeOf(values[1]), wholeOf(values[2]), wholeOf(values[3])};
  if (!isInside(box, layout)) {
    throw ToolError(Outcome::kWrongUsage, "the region lies outside the picture",
                    "Choose another one.");
  }
  return box.pixelCount() == 1 ? boxAround(box.x, box.y, layout) : box;
}

Json peaksJson(const Course& course) {
  Json json = Json::array();
  for (const Peak& peak : course.peaks) {
    json.push_back({{"frequency", peak.frequency},
                    {"amplitude", peak.amplitude},
                    {"overNoise", peak.overNoise}});
  }
  return json;
}

Json signalJson(const Course& course, const std::optional<AxisQuality>& quality) {
  const Spectrum& spectrum = course.spectrum;
  Json json{{"values", course.waveform.values()},
            {"spectrum",
             {{"binWidth", spectrum.binWidth},
              {"resolution", spectrum.resolution},
              {"nyquist", spectrum.nyquist},
              {"amplitudes", spectrum.amplitudes}}},
            {"peaks", peaksJson(course)},
            {"quality", nullptr}};
  if (quality) json["quality"] = {{"shown", quality->shown}, {"error", quality->error}};
  return json;
}

}  // namespace

Reply answerVibration(const Request& request, ShownRecording& recording) {
  const Box box = boxOf(request, recording.header());
  const Probed piece = probedPiece(request, recording, box.pixelCount());
  const Measurement found = measure(piece, box, noProgress);
  return replyWith(Json{{"box", {box.x, box.y, box.width, box.height}},
                        {"rate", piece.rate},
                        {"first", piece.range.first()},
                        {"frames", found.brightness.waveform.values().size()},
                        {"lost", found.brightness.waveform.lostFrames()},
                        {"signals",
                         {{"mean", signalJson(found.brightness, std::nullopt)},
                          {"x", signalJson(found.x, found.qualityOfX)},
                          {"y", signalJson(found.y, found.qualityOfY)}}}});
}

}  // namespace KPF_TOOL

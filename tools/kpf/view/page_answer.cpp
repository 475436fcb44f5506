#include "tools/kpf/view/page_answer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/frames_answer.h"
#include "tools/kpf/view/job_request.h"
#include "tools/kpf/view/map_answer.h"
#include "tools/kpf/view/numbers.h"
#include "tools/kpf/view/page_files.h"
#include "tools/kpf/view/probed_piece.h"
#include "tools/kpf/view/shown_frames.h"
#include "tools/kpf/view/still.h"
#include "tools/kpf/view/vibration_answer.h"

namespace KPF_TOOL {
namespace {

std::string typeOf(std::string_view name) {
  if (name.ends_with(".html")) return "text/html; charset=utf-8";
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  if (name.ends_with(".svg")) return "image/svg+xml";
  return "text/javascript; charset=utf-8";
}

Reply answerFile(const std::string& name) {
  const auto files = pageFiles();
  const auto file = std::find_if(files.begin(), files.end(),
                                 [&](const PageFile& one) { return one.name == name; });
  if (file == files.end()) return refusal(404, "there is nothing of that name");
  return {200, typeOf(name), {file->begin, file->end}, nullptr};
}

/// The first frame that is there, by which the page tells the time of every other one.
Json firstFrameOf(ShownFrames& frames) {
  constexpr std::uint32_t kTries = 1000;  // placeholders at the head of a recording
  for (std::uint32_t place = 0; place < std::min(frames.places(), kTries); ++place) {
    const ShownFrame frame = frames.at(place);
    if (frame.state != FrameState::kThere) continue;
    return {{"place", place},
            {"seconds", frame.record.seconds},
            {"microseconds", frame.record.microseconds}};
  }
  return nullptr;
}

Json jsonOf(ShownRecording& recording) {
  const KPF_READER::Header& header = recording.header();
  ShownFrames frames(recording);
  return {{"name", escaped(recording.path())}, {"width", header.width},
          {"height", header.height},           {"bits", header.bitsPerPixel()},
          {"rate", header.frameRate},          {"places", frames.places()},
          {"announced", header.frameCount},    {"text2", escaped(header.text2)},
          {"text5", escaped(header.text5)},    {"first", firstFrameOf(frames)}};
}

}  // namespace

PageAnswer::PageAnswer(const ViewOptions& options) : options_(options) {
  for (const std::string& file : options.files) {
    recordings_.push_back(std::make_unique<ShownRecording>(file));
    const auto& header = recordings_.back()->header();
    if (header.pixelCount() == 0) {
      throw ToolError(Outcome::kUnreadableInput, escaped(file) + " has frames without pixels",
                      "See kpf info for what it is.");
    }
  }
}

Reply PageAnswer::of(const Request& request) {
  try {
    return dispatch(request);
  } catch (const ToolError& error) {
    return refusal(400, std::string(error.what()) + ". " + error.advice());
  } catch (const KPF_READER::RecordingError& error) {
    return refusal(410, escaped(error.what()));
  } catch (const Json::exception&) {
    return refusal(400, "that was not understood. Load the page again.");
  }
}

Reply PageAnswer::dispatch(const Request& request) {
  if (request.writes) {
    if (request.path == "api/jobs") return startJob(Json::parse(request.body));
    return refusal(404, "there is nothing of that name");
  }
  if (request.path.empty()) return answerFile("index.html");
  if (request.path == "api/recordings") return answerRecordings();
  if (request.path == "api/lost") return answerLost(request);
  if (request.path == "api/jobs") return replyWith(jobs_.tell(wholeOf(request, "id", 0)));
  if (request.path == "api/vibration") {
    return answerVibration(request, recordingOf(wholeOf(request, "recording", 0)));
  }
  if (request.path == "api/map") {
    return answerMap(request, recordingOf(wholeOf(request, "recording", 0)));
  }
  if (request.path == "api/frames") {
    return answerFrames(request, recordingOf(wholeOf(request, "recording", 0)), amplifier_);
  }
  return answerFile(request.path);
}

ShownRecording& PageAnswer::recordingOf(std::uint32_t index) {
  if (index < recordings_.size()) return *recordings_[index];
  throw ToolError(Outcome::kWrongUsage, "there is no such recording", "Load the page again.");
}

Reply PageAnswer::answerRecordings() {
  Json json{{"live", options_.live},
            {"scale", options_.scale},
            {"clean", true},
            {"vibration", canAnalyse(recordings_.front()->header())},
            {"map", true},
            {"jobs", offeredJobs()},
            {"recordings", Json::array()}};
  for (const auto& recording : recordings_) json["recordings"].push_back(jsonOf(*recording));
  return replyWith(json);
}

Reply PageAnswer::answerLost(const Request& request) {
  ShownFrames frames(recordingOf(wholeOf(request, "recording", 0)));
  const auto [lost, searched] = frames.lostFrom(wholeOf(request, "from", 0));
  return replyWith(Json{{"lost", lost}, {"searched", searched}});
}

// A still is made at once; the rest may take minutes.
Reply PageAnswer::startJob(const Json& wanted) {
  ShownRecording& recording = recordingOf(wanted.at("recording").get<std::uint32_t>());
  Json reply{{"id", 0}, {"file", escaped(wanted.at("name").get<std::string>())}};
  if (wanted.at("kind") == "still") {
    writeStill(wanted, recording, amplifier_);
  } else {
    reply["id"] = jobs_.start(argumentsOf(wanted, recording.path()));
  }
  return replyWith(reply);
}

}  // namespace KPF_TOOL

#include "tools/kpf/commands/info.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "kpf_reader.h"
#include "tools/kpf/checks/check_files.h"
#include "tools/kpf/terminal/recording_text.h"

namespace KPF_TOOL {
using Json = nlohmann::ordered_json;
using KPF_READER::DivFile;
using KPF_READER::FrameRecord;
using KPF_READER::Header;
using KPF_READER::Recording;
namespace {

/// What is to be learned from the frame headers alone.
struct Frames {
  std::uint32_t placeholders = 0;
  std::optional<FrameRecord> first;  // placeholders left out: they have no time
  std::optional<FrameRecord> last;
};

Frames survey(const Recording& recording) {
  Frames frames;
  for (std::uint32_t n = 0; n < recording.recordCount(); ++n) {
    const FrameRecord record = recording.record(n);
    if (record.placeholder) {
      ++frames.placeholders;
      continue;
    }
    if (!frames.first) frames.first = record;
    frames.last = record;
  }
  return frames;
}

struct Facts {
  explicit Facts(const std::string& file) : recording(file, KPF_READER::Access::kSparse) {
    frames = survey(recording);
    checkCompleteness(recording, findings);
    for (const DivFile& div : recording.divFiles()) bytes += div.size;
  }

  const Header& header() const { return recording.header(); }
  bool complete() const { return findings.count() == 0; }
  bool hasRate() const { return header().frameRate > 0; }
  double duration() const { return recording.recordCount() / header().frameRate; }
  double bytesPerSecond() const {
    return static_cast<double>(header().recordSize()) * header().frameRate;
  }

  Recording recording;
  Frames frames;
  Findings findings;
  std::uint64_t bytes = 0;
};

template <class... Arguments>
void line(const char* name, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  fmt::print("{:<11} {}\n", name, fmt::format(format, std::forward<Arguments>(arguments)...));
}

void printHeader(const Facts& facts) {
  const Header& header = facts.header();
  line("file", "{}", escaped(facts.recording.path()));
  line("frame", "{} x {} pixels, {} bits, {} packed", header.width, header.height,
       header.bitsPerPixel(), sizeText(static_cast<double>(header.frameSize())));
  line("rate", "{} frames/s", header.frameRate);
  line("text5", "{}", quoted(header.text5));
  line("text2", "{}", quoted(header.text2));
  line("values", "value3 {}, value5 {}, value7 {}", header.value3, header.value5, header.value7);
}

void printFrames(const Facts& facts) {
  line("frames", "{} announced, {} written, {}", facts.header().frameCount,
       facts.recording.recordCount(), countText(facts.frames.placeholders, "placeholder"));
  if (facts.frames.first) {
    line("first time", "{}", timeText(*facts.frames.first));
    line("last time", "{}", timeText(*facts.frames.last));
  }
  if (facts.hasRate()) {
    line("duration", "{:.3f} s", facts.duration());
    line("data rate", "{}/s", sizeText(facts.bytesPerSecond()));
  }
}

void printFiles(const Facts& facts) {
  const auto& files = facts.recording.divFiles();
  line("data", "{} in {}", sizeText(static_cast<double>(facts.bytes)),
       countText(files.size(), "file"));
  for (const DivFile& file : files) {
    line("", "{}: {}, {}", escaped(file.path), countText(file.records, "record"),
         sizeText(static_cast<double>(file.size)));
  }
}

void printCompleteness(const Facts& facts) {
  line("complete", "{}", facts.complete() ? "yes" : "no");
  for (const Finding& finding : facts.findings.kept()) {
    line("", "{}: {}", escaped(finding.file), escaped(finding.text));
  }
}

Json jsonOf(const std::optional<FrameRecord>& time) {
  if (!time) return nullptr;
  return {{"seconds", time->seconds}, {"microseconds", time->microseconds}};
}

Json jsonOf(const Header& header) {
  std::string identifier;
  for (const unsigned char byte : header.identifier) identifier += fmt::format("{:02x}", byte);
  return {{"version", header.version},
          {"width", header.width},
          {"height", header.height},
          {"bits", header.bitsPerPixel()},
          {"frameSize", header.frameSize()},
          {"frameRate", header.frameRate},
          {"text2", header.text2},
          {"text5", header.text5},
          {"value3", header.value3},
          {"value5", header.value5},
          {"value7", header.value7},
          {"identifier", identifier},
          {"framesPerFile", header.framesPerDivFile}};
}

Json filesJson(const std::vector<DivFile>& files) {
  Json json = Json::array();
  for (const DivFile& file : files) {
    json.push_back({{"number", file.number},
                    {"path", file.path},
                    {"size", file.size},
                    {"records", file.records},
                    {"trailingBytes", file.trailingBytes}});
  }
  return json;
}

Json problemsJson(const Findings& findings) {
  Json json = Json::array();
  for (const Finding& finding : findings.kept()) {
    json.push_back(
        {{"problem", nameOf(finding.problem)}, {"file", finding.file}, {"text", finding.text}});
  }
  return json;
}

Json jsonOf(const Facts& facts) {
  const bool rate = facts.hasRate();
  Json json{{"file", facts.recording.path()}, {"header", jsonOf(facts.header())}};
  json["announced"] = facts.header().frameCount;
  json["written"] = facts.recording.recordCount();
  json["placeholders"] = facts.frames.placeholders;
  json["firstTime"] = jsonOf(facts.frames.first);
  json["lastTime"] = jsonOf(facts.frames.last);
  json["duration"] = rate ? Json(facts.duration()) : Json(nullptr);
  json["bytesPerSecond"] = rate ? Json(facts.bytesPerSecond()) : Json(nullptr);
  json["files"] = filesJson(facts.recording.divFiles());
  json["complete"] = facts.complete();
  json["problems"] = problemsJson(facts.findings);
  return json;
}

void print(const Facts& facts) {
  printHeader(facts);
  printFrames(facts);
  printFiles(facts);
  printCompleteness(facts);
}

}  // namespace

int runInfo(const InfoOptions& options) {
  try {
    const Facts facts(options.file);
    if (!options.json) {
      print(facts);
    } else {
      fmt::print("{}\n", jsonOf(facts).dump(2, ' ', false, Json::error_handler_t::replace));
    }
    return 0;
  } catch (const KPF_READER::RecordingError& error) {
    return unreadable(error);
  }
}

}  // namespace KPF_TOOL

// kpf info: what a recording is.
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/checks/check_files.h"
#include "tools/kpf/checks/survey.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/records/records.h"
#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
using KPF_READER::DivFile;
using KPF_READER::Header;
namespace {

constexpr std::size_t kFilesListed = 100;  // for people; programs get them all

struct InfoOptions {
  std::string file;  // the header file
  bool json = false;
};

/// One line of the answer. What has no name goes on with the line above.
template <class... Arguments>
void line(const char* name, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  fmt::print("{:<11} {}\n", name, fmt::format(format, std::forward<Arguments>(arguments)...));
}

void printHeader(const Survey& survey) {
  const Header& header = survey.header();
  line("file", "{}", escaped(survey.recording.path()));
  line("frame", "{} x {} pixels, {} bits, {} packed", header.width, header.height,
       header.bitsPerPixel(), sizeText(static_cast<double>(header.frameSize())));
  line("rate", "{} frames/s", header.frameRate);
  line("text5", "{}", quoted(header.text5));
  line("text2", "{}", quoted(header.text2));
  line("values", "value3 {}, value5 {}, value7 {}", header.value3, header.value5, header.value7);
}

void printFrames(const Survey& survey) {
  line("frames", "{} announced, {} written, {}",
       announcesCount(survey.header()) ? std::to_string(survey.header().frameCount)
                                       : "an unknown number",
       survey.recording.recordCount(), countText(survey.placeholders, "placeholder"));
  if (survey.first) {
    line("first time", "{}", timeText(survey.first->seconds, survey.first->microseconds));
    line("last time", "{}", timeText(survey.last->seconds, survey.last->microseconds));
  }
  if (survey.hasRate()) {
    line("duration", "{:.3f} s", survey.duration());
    line("data rate", "{}/s", sizeText(survey.bytesPerSecond()));
  }
}

void printFiles(const Survey& survey) {
  const auto& files = survey.recording.divFiles();
  line("data", "{} in {}", sizeText(static_cast<double>(survey.bytes)),
       countText(files.size(), "file"));
  const std::size_t listed = std::min(files.size(), kFilesListed);
  for (const DivFile& file : std::span(files).first(listed)) {
    line("", "{}: {}, {}", escaped(file.path), countText(file.records, "record"),
         sizeText(static_cast<double>(file.size)));
  }
  if (listed < files.size()) line("", "... and {} more", files.size() - listed);
}

/// Below "complete" stands why not.
void printCompleteness(const Survey& survey) {
  line("complete", "{}", survey.complete() ? "yes" : "no");
  for (const FindingList* list : {&survey.findings.problems(), &survey.findings.notes()}) {
    for (const Finding& finding : list->kept()) {
      line("", "{}: {}", escaped(finding.file), escaped(finding.text));
    }
  }
}

/// Two whole numbers: a double does not hold microseconds since 1970.
Json jsonOf(const std::optional<Record>& time) {
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

/// What is missing shows as a gap in the numbers.
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

/// The kinds are words, so that programs need not know the sentences.
Json problemsJson(const Findings& findings) {
  Json json = Json::array();
  for (const FindingList* list : {&findings.problems(), &findings.notes()}) {
    for (const Finding& finding : list->kept()) {
      json.push_back(
          {{"problem", nameOf(finding.problem)}, {"file", finding.file}, {"text", finding.text}});
    }
  }
  return json;
}

Json jsonOf(const Survey& survey) {
  const bool rate = survey.hasRate();
  Json json{{"file", survey.recording.path()}, {"header", jsonOf(survey.header())}};
  json["announced"] = survey.header().frameCount;
  json["written"] = survey.recording.recordCount();
  json["placeholders"] = survey.placeholders;
  json["firstTime"] = jsonOf(survey.first);
  json["lastTime"] = jsonOf(survey.last);
  json["duration"] = rate ? Json(survey.duration()) : Json(nullptr);
  json["bytesPerSecond"] = rate ? Json(survey.bytesPerSecond()) : Json(nullptr);
  json["files"] = filesJson(survey.recording.divFiles());
  json["complete"] = survey.complete();
  json["problems"] = problemsJson(survey.findings);
  return json;
}

void print(const Survey& survey) {
  printHeader(survey);
  printFrames(survey);
  printFiles(survey);
  printCompleteness(survey);
}

Outcome runInfo(const InfoOptions& options) {
  const Survey survey(options.file);
  if (options.json) {
    printJson(jsonOf(survey));
  } else {
    print(survey);
  }
  return survey.readable ? Outcome::kDone : Outcome::kProblemsFound;
}

}  // namespace

void addInfo(CLI::App& app, Job& job) {
  const auto [line, options] = addCommand(app, job, "info", "Tell what a recording is", runInfo);
  line.add_option("FILE", options.file, "header file (.kpf)")->required();
  addJson(line, options.json);
  addFooter(line, "kpf info clip.kpf",
            {"told, also of a recording that is not complete", "the system cannot read all records",
             "wrong usage, or a recording that cannot be read"});
}

}  // namespace KPF_TOOL

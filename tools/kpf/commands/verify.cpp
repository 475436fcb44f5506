// kpf verify: is every byte of a recording as it must be?
#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>

#include "kpf_reader.h"
#include "tools/kpf/checks/check_files.h"
#include "tools/kpf/checks/check_records.h"
#include "tools/kpf/checks/findings.h"
#include "tools/kpf/checks/unreadable.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/records/records.h"
#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
using KPF_READER::Recording;
using KPF_READER::RecordingError;
namespace {

constexpr std::uint64_t kMegabyte = 1000000;  // bytes, the unit of the progress

struct VerifyOptions {
  std::string file;  // the header file
  bool json = false;
  bool strict = false;  // notes count as problems do
  bool quiet = false;   // no progress
};

/// What was found, and how much was looked at.
struct Verdict {
  Findings findings;
  std::uint32_t announced = 0;
  bool announcesCount = true;  // else `announced` is no number
  std::uint32_t written = 0;
  std::uint32_t placeholders = 0;
};

Verdict verify(const VerifyOptions& options) {
  Verdict verdict;
  const Recording recording(options.file);
  verdict.announced = recording.header().frameCount;
  verdict.announcesCount = announcesCount(recording.header());
  verdict.written = recording.recordCount();
  checkHeader(recording, verdict.findings);
  checkCompleteness(recording, verdict.findings);
  checkStrayFiles(recording, verdict.findings);

  std::uint64_t bytes = 0;
  for (const KPF_READER::DivFile& file : recording.divFiles()) bytes += file.size;
  Progress progress(options.quiet, bytes / kMegabyte, "MB");
  const auto show = [&progress](std::uint64_t done) { progress.show(done / kMegabyte); };
  verdict.placeholders = checkRecords(recording, show, verdict.findings);
  return verdict;
}

/// A recording whose files contradict each other so much that none of its frames can be reached.
Verdict unopened(const RecordingError& error) {
  Verdict verdict;
  verdict.findings.add(unreadable(error));
  return verdict;
}

bool isSound(const VerifyOptions& options, const Findings& findings) {
  return findings.problems().count() == 0 && (!options.strict || findings.notes().count() == 0);
}

std::string placeText(const Finding& finding) {
  const std::string record = finding.record ? fmt::format(", record {}", *finding.record) : "";
  return fmt::format("{}{}, byte {}", escaped(finding.file), record, finding.offset);
}

/// @param start of each line.
void print(const FindingList& list, const char* start) {
  for (const Finding& finding : list.kept()) {
    fmt::print("{}{}: {}\n", start, placeText(finding), escaped(finding.text));
  }
  if (list.count() > list.kept().size()) {
    fmt::print("{}... and {} more\n", start, list.count() - list.kept().size());
  }
}

/// "no problems", "1 problem, 2 notes".
std::string countsText(const Findings& findings) {
  const std::uint64_t problems = findings.problems().count();
  const std::uint64_t notes = findings.notes().count();
  return (problems == 0 ? "no problems" : countText(problems, "problem")) +
         (notes == 0 ? "" : ", " + countText(notes, "note"));
}

/// Each finding with file, record and offset, and a last line that sums up.
void print(const VerifyOptions& options, const Verdict& verdict) {
  const Findings& findings = verdict.findings;
  print(findings.problems(), "");
  print(findings.notes(), "note: ");
  if (findings.firstDamage()) {
    fmt::print("The first missing or damaged record is {} ({}, byte {}).\n",
               *findings.firstDamage()->record, escaped(findings.firstDamage()->file),
               findings.firstDamage()->offset);
  }
  fmt::print("{}: {} of {}, {}, {}\n", escaped(options.file), verdict.written,

             verdict.announcesCount ? countText(verdict.announced, "frame")
                                    : "an unknown number of frames",
             countText(verdict.placeholders, "placeholder"), countsText(findings));
}

/// @param kind what the word for the finding is called.
Json jsonOf(const Finding& finding, const char* kind) {
  Json json{{kind, nameOf(finding.problem)}, {"file", finding.file}};
  json["record"] = finding.record ? Json(*finding.record) : nullptr;
  json["offset"] = finding.offset;
  json["text"] = finding.text;
  return json;
}

Json jsonOf(const FindingList& list, const char* kind) {
  Json json = Json::array();
  for (const Finding& finding : list.kept()) json.push_back(jsonOf(finding, kind));
  return json;
}

Json jsonOf(const VerifyOptions& options, const Verdict& verdict) {
  const Findings& findings = verdict.findings;
  Json json{{"file", options.file},
            {"ok", isSound(options, findings)},
            {"announced", verdict.announced},
            {"written", verdict.written},
            {"placeholders", verdict.placeholders},
            {"problemCount", findings.problems().count()},
            {"noteCount", findings.notes().count()}};
  const auto& damage = findings.firstDamage();
  json["firstDamage"] = damage ? jsonOf(*damage, "problem") : Json(nullptr);
  json["problems"] = jsonOf(findings.problems(), "problem");
  json["notes"] = jsonOf(findings.notes(), "note");
  return json;
}

/// Nothing there, or something else under that name: not a recording that has problems.
bool isNoRecording(const RecordingError& error, const std::string& file) {
  return error.file() == file && error.offset() == 0;
}

Outcome runVerify(const VerifyOptions& options) {
  Verdict verdict;
  try {
    verdict = verify(options);
  } catch (const RecordingError& error) {
    if (isNoRecording(error, options.file)) throw;
    verdict = unopened(error);
  }
  if (options.json) {
    printJson(jsonOf(options, verdict));
  } else {
    print(options, verdict);
  }
  return isSound(options, verdict.findings) ? Outcome::kDone : Outcome::kProblemsFound;
}

}  // namespace

void addVerify(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "verify", "Check every byte that can be checked", runVerify);
  line.add_option("FILE", options.file, "header file (.kpf)")->required();
  addJson(line, options.json);
  line.add_flag("--strict", options.strict, "notes count as problems do");
  line.add_flag("--quiet", options.quiet, "no progress");
  addFooter(line, "kpf verify clip.kpf && echo sound",
            {"no problems, though there may be notes",
             "the recording has problems, or with --strict notes",
             "wrong usage, or there is no recording to verify"});
}

}  // namespace KPF_TOOL

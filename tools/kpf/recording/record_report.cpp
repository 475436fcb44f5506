#include "tools/kpf/recording/record_report.h"

#include <fmt/format.h>

#include <cstdio>
#include <ratio>

#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/system.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

double milliseconds(std::chrono::nanoseconds duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

double inSeconds(std::chrono::nanoseconds duration) {
  return std::chrono::duration<double>(duration).count();
}

void tellWriteFailed(const RecordResult& result) {
  tell("kpf: {}: {} of {} are on disk: {}\n", escaped(result.header), result.onDisk,
       countText(result.frames, "frame"), result.obstacle);
  tell("What is there can be read; kpf verify tells what is missing.\n");
}

}  // namespace

Outcome outcomeOf(const RecordResult& result) {
  if (!result.written) return Outcome::kWriteFailed;
  if (result.damaged > 0) return Outcome::kProblemsFound;
  return result.trouble.empty() ? Outcome::kDone : Outcome::kCutShort;
}

std::string paceText(const RecordResult& result) {
  std::string text = fmt::format("99.9 % of the calls took up to {:.2f} ms, the slowest {:.2f} ms",
                                 milliseconds(result.within999), milliseconds(result.longest));
  if (result.late) text += fmt::format("; {} came late", countText(*result.late, "frame"));
  return text;
}

void RecordReport::remark(const std::string& line) {
  if (line.empty()) return;
  remarks_.push_back(line);
  if (!quiet_) tell("kpf: {}\n", line);
}

Outcome RecordReport::conclude(const RecordResult& result) const {
  const Outcome outcome = outcomeOf(result);
  print(result, outcome);
  if (json_) printDocument(result, outcome);
  return outcome;
}

void RecordReport::print(const RecordResult& result, Outcome outcome) const {
  const std::string recorded =
      fmt::format("{}: {} recorded, {}", escaped(result.header), countText(result.frames, "frame"),
                  countText(result.placeholders, "placeholder"));
  if (outcome == Outcome::kWriteFailed) {
    tellWriteFailed(result);
  } else if (outcome != Outcome::kDone) {
    tell("kpf: {}: {}\n", recorded, result.trouble);
  } else if (!quiet_ && !json_) {
    fmt::print("{}\n", recorded);
    std::fflush(stdout);  // before what comes next on the same terminal
  }
  if (!quiet_ && errorIsTerminal()) tell("{}\n", paceText(result));
}

void RecordReport::printDocument(const RecordResult& result, Outcome outcome) const {
  Json json{{"file", result.header},     {"outcome", nameOf(outcome)},
            {"frames", result.frames},   {"placeholders", result.placeholders},
            {"damaged", result.damaged}, {"onDisk", result.onDisk}};
  json["trouble"] = result.trouble.empty() ? Json(nullptr) : Json(result.trouble);
  json["remarks"] = remarks_;
  // In seconds.
  json["calls"] = {{"p999", inSeconds(result.within999)}, {"longest", inSeconds(result.longest)}};
  json["late"] = result.late ? Json(*result.late) : Json(nullptr);
  printJson(json);
}

}  // namespace KPF_TOOL

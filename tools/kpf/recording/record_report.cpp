#include "tools/kpf/recording/record_report.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <ratio>

#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

double milliseconds(std::chrono::nanoseconds duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

double inSeconds(std::chrono::nanoseconds duration) {
  return std::chrono::duration<double>(duration).count();
}

/// What is wrong with the input although all that it gave is on disk; empty when nothing is.
std::string lossesOf(const RecordResult& result) {
  std::string losses;
  if (result.damaged > 0) {
    losses =
        fmt::format(", {} of them placeholders for what is damaged in the input", result.damaged);
  }
  return result.trouble.empty() ? losses : losses + ": " + result.trouble;
}

void tellWriteFailed(const RecordResult& result) {
  fmt::print(stderr, "kpf: {}: {} of {} are on disk: {}\n", escaped(result.header), result.onDisk,
             countText(result.frames, "frame"), result.obstacle);
  fmt::print(stderr, "What is there can be read; kpf verify tells what is missing.\n");
}

}  // namespace

Outcome outcomeOf(const RecordResult& result) {
  if (!result.written) return Outcome::kWriteFailed;
  if (!result.trouble.empty()) return Outcome::kCutShort;
  return result.damaged > 0 ? Outcome::kProblemsFound : Outcome::kDone;
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
  if (!quiet_) fmt::print(stderr, "kpf: {}\n", line);
}

Outcome RecordReport::conclude(const RecordResult& result) const {
  const Outcome outcome = outcomeOf(result);
  tell(result, outcome);
  if (json_) printDocument(result, outcome);
  return outcome;
}

void RecordReport::tell(const RecordResult& result, Outcome outcome) const {
  const std::string frames = countText(result.frames, "frame");
  if (outcome == Outcome::kWriteFailed) {
    tellWriteFailed(result);
  } else if (outcome != Outcome::kDone) {
    fmt::print(stderr, "kpf: {}: {} recorded{}\n", escaped(result.header), frames,
               lossesOf(result));
  } else if (!quiet_ && !json_) {
    fmt::print("{}: {} recorded, {}\n", escaped(result.header), frames,
               countText(result.placeholders, "placeholder"));
    std::fflush(stdout);  // before what comes next on the same terminal
  }
  if (!quiet_ && isatty(STDERR_FILENO) != 0) fmt::print(stderr, "{}\n", paceText(result));
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

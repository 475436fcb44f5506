#include "tools/kpf/commands/live_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr double kDriftTold = 0.01;  // seconds

bool allWhole(const std::vector<Clip>& clips) {
  return std::all_of(clips.begin(), clips.end(), [](const Clip& clip) { return clip.whole; });
}

Outcome outcomeOf(const LiveResult& result, const RecordOptions& options) {
  if (!allWhole(result.clips)) return Outcome::kWriteFailed;
  if (!result.trouble.empty() || result.clips.empty()) return Outcome::kCutShort;
  const bool lost = result.tally.lost + result.tally.incomplete > 0;
  return lost && options.live.noLoss ? Outcome::kProblemsFound : Outcome::kDone;
}

std::string lossText(const LiveTally& tally) {
  return fmt::format("{} received, {} lost, {} incomplete, {} late", tally.received, tally.lost,
                     tally.incomplete, tally.late);
}

/// What a user has to know of the times.
void remarkOnClock(const LiveResult& result, RecordReport& remarks) {
  if (result.clockMissing) {
    remarks.remark("the camera tells no times: those of the system were taken");
  }
  if (result.clockResets > 0) {
    remarks.remark(
        fmt::format("the camera's clock was set back {}: the times go on by the system's",
                    countText(result.clockResets, "time")));
  }
  if (std::abs(result.drift) >= kDriftTold) {
    remarks.remark(fmt::format(
        "the camera's clock {} {:.0f} ms against the system's; --clock system takes that one",
        result.drift > 0 ? "lost" : "gained", std::abs(result.drift) * 1e3));
  }
}

void reportTrouble(const LiveResult& result) {
  for (const Clip& clip : result.clips) {
    if (clip.whole) continue;
    tell(
        "kpf: {}: not all of {} are on disk: the files could not be written, is the disk "
        "full?\nWhat is there can be read; kpf verify tells what is missing.\n",
        escaped(clip.header), countText(clip.frames, "frame"));
  }
  if (!result.trouble.empty()) tell("kpf: {}\n", result.trouble);
  if (!result.clips.empty()) return;
  const bool none = result.tally.received == 0;
  tell("kpf: nothing is recorded: {}\n", none ? "no whole frame came" : "nothing began it");
  if (none) tell("Look at its trigger mode, its packet size, and the firewall.\n");
}

Json json(const LiveResult& result, const RecordReport& remarks) {
  Json clips = Json::array();
  for (const Clip& clip : result.clips) {
    clips.push_back({{"file", clip.header},
                     {"frames", clip.frames},
                     {"placeholders", clip.placeholders},
                     {"whole", clip.whole}});
  }
  return {{"recordings", clips},
          {"received", result.tally.received},
          {"lost", result.tally.lost},
          {"incomplete", result.tally.incomplete},
          {"late", result.tally.late},
          {"buffers", result.buffers},
          {"mostWaiting", result.mostWaiting},
          {"slowestWriteSeconds", result.worstCall},
          {"clockDriftSeconds", result.drift},
          {"clockSetBack", result.clockResets},
          {"trouble", result.trouble},
          {"remarks", remarks.remarks()}};
}

void print(const LiveResult& result) {
  for (const Clip& clip : result.clips) {
    fmt::print("{}: {} recorded, {}\n", escaped(clip.header), countText(clip.frames, "frame"),
               countText(clip.placeholders, "placeholder"));
  }
  fmt::print("{}", lossText(result.tally));
  if (result.buffers > 0) {
    fmt::print("; at most {} of {} buffers waited", result.mostWaiting, result.buffers);
  }
  fmt::print("; slowest write {:.1f} ms\n", result.worstCall * 1e3);
}

}  // namespace

Outcome report(const LiveResult& result, const RecordOptions& options, RecordReport& remarks) {
  reportTrouble(result);
  remarkOnClock(result, remarks);
  const Outcome outcome = outcomeOf(result, options);
  if (options.json) {
    printJson(json(result, remarks));
  } else if (!options.quiet || outcome != Outcome::kDone) {
    print(result);
  }
  return outcome;
}

}  // namespace KPF_TOOL

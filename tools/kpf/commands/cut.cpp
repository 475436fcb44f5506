// kpf cut: some frames of a recording become one of their own.
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/recording/claim.h"
#include "tools/kpf/recording/record_writer.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/records/record_walk.h"
#include "tools/kpf/records/records.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
using KPF_READER::Recording;
namespace {

struct CutOptions {
  std::string input;   // header file
  std::string output;  // likewise
  FrameRange range;
  bool renumber = false;  // from 0; else the frames keep their numbers
  bool force = false;     // replace another recording
  bool quiet = false;
};

/// What goes into the new recording for the one at `place`: where that is lost, a placeholder.
std::vector<unsigned char> recordFor(RecordWalk& walk, std::uint32_t place, std::uint32_t newPlace,
                                     const CutOptions& options, std::size_t size) {
  std::vector<unsigned char> bytes(size);
  const auto record = walk.at(place);
  if (!record) return bytes;
  std::copy(record->bytes.begin(), record->bytes.end(), bytes.begin());
  if (options.renumber && !record->placeholder) setSequenceNumber(bytes, newPlace);
  return bytes;
}

/// @return how many of `frames` frames were copied before the user wanted to stop.
std::uint32_t copyRecords(const Recording& recording, RecordWalk& walk, RecordWriter& writer,
                          const CutOptions& options, std::uint32_t frames) {
  const auto first = static_cast<std::uint32_t>(options.range.first());
  const std::size_t size = recording.header().recordSize();
  Progress progress(options.quiet, frames);
  std::uint32_t done = 0;
  for (; done < frames && !Interrupt::requested(); ++done) {
    writer.add(recordFor(walk, first + done, done, options, size));
    progress.show(done + 1);
  }
  return done;
}

/// Whether an end at the wrong place is a loss. Of a recording whose recorder was killed, and had
/// not announced an end, who names none wants what is there.
bool lacksEnd(const Recording& recording, const CutOptions& options) {
  return options.range.to || announcesCount(recording.header());
}

/// Prints the last lines.
Outcome conclude(const Recording& recording, const RecordWalk& walk, const CutOptions& options,
                 std::uint32_t done, std::uint32_t frames) {
  const std::string flaw = walk.flaw();
  if (!flaw.empty()) tell("kpf: {}: {}\n", escaped(options.input), flaw);
  if (done < frames) {
    tell("kpf: {} of {} frames copied: interrupted\n", done, frames);
    return Outcome::kCutShort;
  }
  const bool endWanted = !options.range.to || *options.range.to >= walk.places();
  const std::string end = endWanted ? walk.wrongEnd() : "";
  if (!end.empty()) tell("kpf: {}: {}\n", escaped(options.input), end);
  if (!options.quiet) fmt::print("{}: {}\n", escaped(options.output), countText(done, "frame"));
  const bool whole = flaw.empty() && (end.empty() || !lacksEnd(recording, options));
  return whole ? Outcome::kDone : Outcome::kCutShort;
}

Outcome runCut(const CutOptions& options) {
  const Interrupt interrupt;
  const std::string header = headerPath(options.output);
  const FileIds input = filesOfRecording(options.input);
  checkTarget(header, options.force, input);
  const Recording recording(options.input);
  RecordWalk walk(recording);
  if (walk.places() == 0) throw noSuchFrames(options.input, "it has none at all");
  const auto frames = static_cast<std::uint32_t>(options.range.framesOf(walk.places()));
  if (frames == 0) {
    throw noSuchFrames(options.input, fmt::format("it has {}, from 0 on", walk.places()));
  }
  remark(options.quiet, beyondEnd(options.range, walk.places()));
  checkRoom(header, std::uint64_t{frames} * recording.header().recordSize());
  const Claim claim(header);
  claim.demand();
  clearTarget(header, options.force, input);
  RecordWriter writer(header, recording);
  const std::uint32_t done = copyRecords(recording, walk, writer, options, frames);
  if (done > 0) writer.finish();
  return conclude(recording, walk, options, done, frames);
}

}  // namespace

void addCut(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "cut", "Copy some frames into a recording of their own", runCut);
  line.add_option("IN", options.input, "header file (.kpf)")->required();
  line.add_option("OUT", options.output, "header file to write (.kpf)")->required();
  addRange(line, options.range);
  line.add_flag("--renumber", options.renumber, "number the frames from 0; times stay");
  line.add_flag("--force", options.force, "replace another recording");
  line.add_flag("--quiet", options.quiet, "no progress, no summary");
  addFooter(line, "kpf cut clip.kpf part.kpf --from 100 --to 199",
            {"every frame that was asked for is there",
             "cut short: interrupted, frames are missing, or the system refused to write",
             kNotBegunText});
}

}  // namespace KPF_TOOL

// kpf checksum: keeps what every frame is now, for verify to compare with later.
#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "kpf_reader.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/files/new_file.h"
#include "tools/kpf/recording/claim.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/records/checksum.h"
#include "tools/kpf/records/checksum_file.h"
#include "tools/kpf/records/record_walk.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

struct ChecksumOptions {
  std::string file;    // header file
  bool force = false;  // replace older checksums
  bool quiet = false;
};

/// @return false when the user wanted to stop.
bool writeChecksums(RecordWalk& walk, ChecksumWriter& writer, bool quiet) {
  Progress progress(quiet, walk.places());
  for (std::uint32_t place = 0; place < walk.places(); ++place) {
    if (Interrupt::requested()) return false;
    if (const auto record = walk.at(place)) writer.add(place, checksumOf(record->bytes));
    progress.show(place + 1);
  }
  return true;
}

Outcome runChecksum(const ChecksumOptions& options) {
  const Interrupt interrupt;
  const KPF_READER::Recording recording(options.file);
  // Its recorder may be keeping checksums of its own.
  checkUnclaimed(withFolder(options.file));
  RecordWalk walk(recording);
  if (walk.places() == 0) throw noSuchFrames(options.file, "it has none at all");
  const Destination destination{checksumFileName(options.file), options.force, {}};
  NewFile file(destination.name, destination);
  ChecksumWriter writer(file.path(), recording.header().identifier);
  if (!writeChecksums(walk, writer, options.quiet)) {
    tell("kpf: interrupted, no checksums are kept\n");
    return Outcome::kCutShort;
  }
  if (!writer.close()) {
    throw ToolError(Outcome::kWriteFailed,
                    fmt::format("cannot write {}", escaped(destination.name)), "Free some space.");
  }
  file.commit();
  const std::string flaw = walk.flaw().empty() ? walk.wrongEnd() : walk.flaw();
  if (!flaw.empty()) {
    tell("kpf: {}: {}\n", escaped(options.file), flaw);
    return Outcome::kProblemsFound;
  }
  if (!options.quiet) {
    fmt::print("{}: {}\n", escaped(destination.name), countText(walk.places(), "checksum"));
  }
  return Outcome::kDone;
}

}  // namespace

void addChecksum(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "checksum", "Keep a checksum of each frame for verify", runChecksum);
  line.add_option("FILE", options.file, "header file (.kpf)")->required();
  line.add_flag("--force", options.force, "replace older checksums");
  line.add_flag("--quiet", options.quiet, "no progress, no summary");
  addFooter(line, "kpf checksum clip.kpf",
            {"the checksum of every frame is kept",
             "frames are missing or unreadable, interrupted, or the system refused to write",
             kNotBegunText});
}

}  // namespace KPF_TOOL

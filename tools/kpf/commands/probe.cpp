// kpf probe: from picture to vibration.
#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "tools/kpf/analysis/transform.h"
#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/frames/recorded_frames.h"
#include "tools/kpf/probing/files.h"
#include "tools/kpf/probing/measurement.h"
#include "tools/kpf/probing/report.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/progress.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

struct ProbeOptions {
  std::string file;                           // header file
  std::vector<unsigned> at;                   // x, y
  std::vector<unsigned> box;                  // x, y, width, height
  std::string waveform, spectrum, plot, map;  // files to write; empty: none
  std::optional<double> frequency;            // of the map, in hertz
  std::optional<double> scale;                // millimetres a pixel
  double rate = 0;                            // frames per second; 0: the recording's
  FrameRange range;
  bool json = false;
  bool force = false;  // replace files that are there
  bool quiet = false;
};

ToolError wrongUsage(const std::string& what, const std::string& advice) {
  return {Outcome::kWrongUsage, what, advice};
}

/// What needs no look into the recording.
void checkOptions(const ProbeOptions& options) {
  if (!canTransform()) {
    throw wrongUsage("this kpf was built without kissfft",
                     "On Linux build it with libkissfft-dev installed.");
  }
  const bool point = !options.at.empty() || !options.box.empty();
  if (!point && options.map.empty()) {
    throw wrongUsage("nothing is asked for", "Say where with --at or --box, or ask for a --map.");
  }
  if (!point && !(options.waveform + options.spectrum + options.plot).empty()) {
    throw wrongUsage("--waveform, --spectrum and --plot are of a point or a box",
                     "Say where with --at or --box.");
  }
  if (options.frequency && options.map.empty()) {
    throw wrongUsage("--frequency is that of a map", "Ask for one with --map.");
  }
  if (!options.map.empty() && !isMapName(options.map)) {
    throw wrongUsage(fmt::format("no map is written as {}", escaped(options.map)),
                     "Give it a name in .png, .tif or .raw.");
  }
  if (!options.plot.empty() && !isPlotName(options.plot)) {
    throw wrongUsage(fmt::format("no plot is written as {}", escaped(options.plot)),
                     "Give it a name in .svg or .png.");
  }
}

Destination destinationOf(const std::string& name, const ProbeOptions& options) {
  return {name, options.force, filesRead(options.file)};
}

/// What a name leads to, as far as the system tells.
std::filesystem::path placeOf(const std::string& name) {
  std::error_code unknown;
  const std::filesystem::path absolute = std::filesystem::absolute(name, unknown);
  const std::filesystem::path place = std::filesystem::weakly_canonical(absolute, unknown);
  return unknown ? absolute : place;
}

/// Before all the work, not behind it.
void checkDestinations(const ProbeOptions& options) {
  std::set<std::filesystem::path> taken;
  for (const std::string* name :
       {&options.waveform, &options.spectrum, &options.plot, &options.map}) {
    if (name->empty()) continue;
    if (!taken.insert(placeOf(*name)).second) {
      throw wrongUsage(fmt::format("{} is to be two files at once", escaped(*name)),
                       "Give each of them a name of its own.");
    }
    const std::filesystem::path folder = std::filesystem::path(*name).parent_path();
    std::error_code unknown;
    if (!folder.empty() && !std::filesystem::is_directory(folder, unknown)) {
      throw ToolError(Outcome::kRefused,
                      fmt::format("there is no folder {}", escaped(folder.string())),
                      "Make it, or choose another name.");
    }
    checkFree(*name, destinationOf(*name, options));
  }
}

/// @throws ToolError where the recording does not hold what is asked for.
Probed probedOf(const ProbeOptions& options) {
  const Samples samples = samplesOf(options.file);
  Probed probed;
  probed.open = [file = options.file, samples] { return openRecording(file, samples); };
  const auto source = probed.open();
  probed.layout = {source->width(), source->height(), samples};
  probed.rate = options.rate > 0 ? options.rate : source->frameRate();
  probed.range = options.range;
  probed.frames = framesAskedFor(*source, options.range, options.file).value_or(0);
  remark(options.quiet, beyondEnd(options.range, source->frameCount()));
  if (probed.rate <= 0) {
    throw wrongUsage(fmt::format("{} tells no frame rate", escaped(options.file)),
                     "Give one with --rate.");
  }
  if (probed.frames < kFewestFrames) {
    throw wrongUsage(fmt::format("{} {} no spectrum", countText(probed.frames, "frame"),
                                 probed.frames == 1 ? "has" : "have"),
                     fmt::format("Choose at least {}.", kFewestFrames));
  }
  return probed;
}

/// @throws ToolError where it does not lie in the picture.
std::optional<Box> boxOf(const ProbeOptions& options, const PictureLayout& layout) {
  const auto& at = options.at;
  const auto& box = options.box;
  if (at.empty() && box.empty()) return std::nullopt;
  const Box asked = at.empty() ? Box{box[0], box[1], box[2], box[3]} : Box{at[0], at[1], 1, 1};
  if (!isInside(asked, layout)) {
    throw wrongUsage(
        fmt::format("{} x {} pixels at {},{} are not in the picture of {} x {}", asked.width,
                    asked.height, asked.x, asked.y, layout.width, layout.height),
        "Count from 0,0 in the upper left corner.");
  }
  return at.empty() ? asked : boxAround(at[0], at[1], layout);
}

/// @throws ToolError where a map cannot tell it.
void checkFrequency(const ProbeOptions& options, const Probed& probed) {
  if (!options.frequency) return;
  const auto length = static_cast<double>(Stretches::of(probed.frames).length);
  const double lowest = kFewestCycles * probed.rate / length;
  if (*options.frequency >= lowest && *options.frequency <= probed.rate / 2) return;
  throw wrongUsage(
      fmt::format("a map of these frames tells {:.4g} to {:g} Hz", lowest, probed.rate / 2),
      "Choose a --frequency between them.");
}

void writeFiles(const ProbeOptions& options, const Report& report) {
  const auto to = [&options](const std::string& name) { return destinationOf(name, options); };
  if (!options.waveform.empty()) {
    writeText(to(options.waveform),
              waveformTable(*report.box, options.range.first(), options.scale));
  }
  if (!options.spectrum.empty()) writeText(to(options.spectrum), spectrumTable(*report.box));
  if (!options.plot.empty()) writePlots(to(options.plot), plotsOf(*report.box));
  if (!options.map.empty()) writeMap(to(options.map), *report.map, report.rate);
}

/// Box and map read the recording one after the other, and what one had the other may miss.
std::string flawOf(const Report& report) {
  if (report.map && !report.map->flaw.empty()) return report.map->flaw;
  return report.box ? report.box->flaw : "";
}

/// Progress that ends the job where the user wishes so: nothing is written before all is measured.
ProbeProgress shownBy(Progress& progress) {
  return [&progress](std::uint64_t done) {
    if (Interrupt::requested()) {
      throw ToolError(Outcome::kCutShort, "interrupted, nothing was written", "Start it again.");
    }
    progress.show(done);
  };
}

Outcome runProbe(const ProbeOptions& options) {
  checkOptions(options);
  const Interrupt interrupt;
  const Probed probed = probedOf(options);
  const std::optional<Box> box = boxOf(options, probed.layout);
  checkFrequency(options, probed);
  checkDestinations(options);
  Report report{options.file, probed.rate, probed.frames, options.scale, {}, {}, options.map};
  if (box) {
    Progress progress(options.quiet, 2 * probed.frames);
    report.box = measure(probed, *box, shownBy(progress));
  }
  if (!options.map.empty()) {
    Progress progress(options.quiet, probed.frames * (options.frequency ? 1 : 2));
    const ProbeProgress show = shownBy(progress);
    report.map = options.frequency ? mapOfFrequency(probed, *options.frequency, show)
                                   : mapOfDominance(probed, show);
  }
  writeFiles(options, report);
  if (options.json) {
    printJson(jsonOf(report));
  } else {
    printReport(report);
  }
  return endOf(flawOf(report), options.file);
}

}  // namespace

void addProbe(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "probe", "Measure what swings, how far and how often", runProbe);
  line.add_option("FILE", options.file, "header file (.kpf)")->required();
  auto* const at = line.add_option("--at", options.at, "X,Y: the 15 x 15 pixels around a point")
                       ->delimiter(',')
                       ->expected(2)
                       ->transform(decimal());
  line.add_option("--box", options.box, "X,Y,W,H: these pixels")
      ->delimiter(',')
      ->expected(4)
      ->transform(decimal())
      ->excludes(at);
  line.add_option("--scale", options.scale, "millimetres a pixel, for displacement")
      ->check(positive());
  line.add_option("--waveform", options.waveform, "write it here, as CSV");
  line.add_option("--spectrum", options.spectrum, "write it here, as CSV");
  line.add_option("--plot", options.plot, "draw both: .svg or .png");
  line.add_option("--map", options.map, "where in the picture: .png to look at, .tif, .raw");
  line.add_option("--frequency", options.frequency,
                  "the map shows the amplitude at it; else the dominant frequency")
      ->check(positive());
  line.add_option("--rate", options.rate, "frames per second instead of the recording's")
      ->check(positive());
  addRange(line, options.range);
  addJson(line, options.json);
  line.add_flag("--force", options.force, "replace files that are there");
  line.add_flag("--quiet", options.quiet, "no progress");
  addFooter(line, "kpf probe clip.kpf --at 3,2 --plot spot.svg --map swing.png",
            {"measured, and every file that was asked for is there", kCutShortText, kNotBegunText});
}

}  // namespace KPF_TOOL

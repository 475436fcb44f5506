// kpf: the command line.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "kpf_reader.h"
#include "tools/kpf/commands/amplify.h"
#include "tools/kpf/commands/export.h"
#include "tools/kpf/commands/info.h"
#include "tools/kpf/commands/record.h"
#include "tools/kpf/commands/sheet.h"
#include "tools/kpf/commands/verify.h"
#include "tools/kpf/terminal/recording_text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

/// Each command keeps its options here until it runs, and leaves its exit code.
struct Commands {
  RecordOptions record;
  InfoOptions info;
  VerifyOptions verify;
  ExportOptions exportFrames;
  AmplifyOptions amplify;
  SheetOptions sheet;
  int result = kDone;
};

void addRecord(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("record", "Record a video");
  RecordOptions& options = commands.record;
  command
      ->add_option("INPUT", options.input,
                   "video file, image pattern (f_%04d.png), camera (/dev/video0), or -")
      ->required();
  command->add_option("OUT", options.output, "header file to write (.kpf)")->required();
  command->add_option("--bits", options.bits, "bits a pixel: 8 or 12")
      ->check(CLI::IsMember({8, 12}))
      ->capture_default_str();
  command->add_option("--frames", options.frames, "frames to record; needed for cameras and -")
      ->check(CLI::Range(1U, 0xFFFFFFFFU));
  command->add_option("--rate", options.rate, "frames per second instead of the input's")
      ->check(CLI::PositiveNumber);
  command->add_option("--start", options.start, "time of the first frame: 2026-11-21T05:00:00Z");
  command->add_option("--text", options.text, "text to keep in the header file (text5)");
  command->add_option("--note", options.note, "second text to keep there (text2)");
  command->add_flag("--fill-gaps", options.fillGaps,
                    "placeholders where the input's time stamps skip frames");
  command->add_flag("--force", options.force, "replace another recording");
  command->add_flag("--quiet", options.quiet, "no progress, no summary");
  command->footer("Example: kpf record street.avi clip.kpf --bits 12");
  command->callback([&commands] { commands.result = runRecord(commands.record); });
}

void addInfo(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("info", "Tell what a recording is");
  command->add_option("FILE", commands.info.file, "header file (.kpf)")->required();
  command->add_flag("--json", commands.info.json, "for programs");
  command->footer("Example: kpf info clip.kpf");
  command->callback([&commands] { commands.result = runInfo(commands.info); });
}

void addVerify(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("verify", "Check every byte that can be checked");
  command->add_option("FILE", commands.verify.file, "header file (.kpf)")->required();
  command->add_flag("--json", commands.verify.json, "for programs");
  command->add_flag("--quiet", commands.verify.quiet, "no progress");
  command->footer("Example: kpf verify clip.kpf && echo sound");
  command->callback([&commands] { commands.result = runVerify(commands.verify); });
}

void addRange(CLI::App& command, FrameRange& range) {
  command.add_option("--from", range.from, "first frame, counted from 0");
  command.add_option("--to", range.to, "last frame");
}

void addExport(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("export", "Turn a recording into video or images");
  ExportOptions& options = commands.exportFrames;
  command->add_option("FILE", options.file, "header file (.kpf)")->required();
  command
      ->add_option("OUT", options.output,
                   ".mkv lossless, .mp4 for viewing, frame_%06d.png or .tif, - raw")
      ->required();
  addRange(*command, options.range);
  command->add_flag("--quiet", options.quiet, "no progress");
  command->footer("Example: kpf export clip.kpf frame_%06d.tif --from 100 --to 199");
  command->callback([&commands] { commands.result = runExport(commands.exportFrames); });
}

void addAmplify(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("amplify", "Make small movements visible");
  AmplifyOptions& options = commands.amplify;
  command->add_option("INPUT", options.input, "recording (.kpf), or what record takes")->required();
  command->add_option("OUT", options.output, ".mkv, .mp4, frame_%06d.png or .tif, - raw")
      ->required();
  command->add_option("--frequency", options.frequency, "of the motion, in hertz")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command->add_option("--gain", options.gain, "on what differs from the reference")
      ->capture_default_str();
  command->add_option("--rate", options.rate, "frames per second instead of the input's")
      ->check(CLI::PositiveNumber);
  command->add_flag("--compare", options.compare, "original, reference, amplified side by side");
  addRange(*command, options.range);
  command->add_flag("--quiet", options.quiet, "no progress");
  command->footer("Example: kpf amplify clip.kpf moving.mp4 --frequency 5 --gain 8 --compare");
  command->callback([&commands] { commands.result = runAmplify(commands.amplify); });
}

void addSheet(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("sheet", "Source and recording on one page");
  command->group("");  // for the demo
  command->add_option("SOURCE", commands.sheet.source)->required();
  command->add_option("FILE", commands.sheet.recording)->required();
  command->add_option("OUT", commands.sheet.output)->required();
  command->callback([&commands] { commands.result = runSheet(commands.sheet); });
}

int run(CLI::App& app, const Commands& commands, int argc, char** argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongOrUnreadable;
  } catch (const ToolError& error) {
    fmt::print(stderr, "kpf: {}\n{}\n", error.what(), error.advice());
    return error.exitCode();
  } catch (const KPF_READER::RecordingError& error) {
    return unreadable(error);
  } catch (const std::exception& error) {
    fmt::print(stderr, "kpf: {}\nThe job was cut short.\n", error.what());
    return kProblems;
  }
  return commands.result;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): only for want of memory, before anything is done.
int main(int argc, char** argv) {
  CLI::App app{"Records mono video, and looks after the recordings."};
  app.set_version_flag("--version", "kpf " KPF_VERSION);
  app.require_subcommand(1);
  Commands commands;
  addRecord(app, commands);
  addInfo(app, commands);
  addVerify(app, commands);
  addExport(app, commands);
  addAmplify(app, commands);
  addSheet(app, commands);
  return run(app, commands, argc, argv);
}

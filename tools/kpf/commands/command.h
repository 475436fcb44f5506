// What every command is made of.
//
// A command is one file: its options, their declaration, their check, and the run. It is added by a
// function of its own, which commands.h lists.
#ifndef KPF_COMMAND_H
#define KPF_COMMAND_H

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "tools/kpf/frames/frame_range.h"
#include "tools/kpf/terminal/outcome.h"

namespace KPF_TOOL {

/// What is left to do when a command line is understood. @throws ToolError, RecordingError.
using Job = std::function<Outcome()>;

/// A command while it is declared: `line` describes the options, and fills `options` from what the
/// user writes.
template <class Options>
struct Command {
  CLI::App& line;
  Options& options;
};

/// Adds a command that leaves `run` with its options in `job` when the user names it. The options
/// live as long as the command line or the job.
template <class Options>
Command<Options> addCommand(CLI::App& app, Job& job, const std::string& name,
                            const std::string& summary, Outcome (*run)(const Options&)) {
  const auto options = std::make_shared<Options>();
  CLI::App& line = *app.add_subcommand(name, summary);
  line.callback([options, run, &job] { job = [options, run] { return run(*options); }; });
  return {line, *options};
}

/// What the exit codes 0, 1 and 2 of a command mean; empty where it never ends like this.
struct ExitStatus {
  std::string done;
  std::string problems;
  std::string notBegun;
};

/// Ends the help: an example that works as it stands, and the exit codes.
void addFooter(CLI::App& line, const std::string& example, const ExitStatus& status);

/// --from and --to.
void addRange(CLI::App& line, FrameRange& range);

/// --y4m: frames in a pipe say what they are.
void addY4m(CLI::App& line, bool& y4m);

/// To be a transform() of options that are whole numbers: the zeros before 0010, as names of images
/// have them, do not make it the 8 that they make of it in C, and in CLI11.
CLI::Validator decimal();

/// A number above 0; CLI11's own check takes NaN and infinity for one.
CLI::Validator positive();

/// A number of a range; what is none, and NaN, is refused in words that name the range.
CLI::Validator between(double low, double high);

/// --json: the result for programs on standard output; a failure too, see main.cpp.
void addJson(CLI::App& line, bool& json);

/// Where an exit code means what it always means.
extern const char* const kCutShortText;
extern const char* const kNotBegunText;

}  // namespace KPF_TOOL

#endif

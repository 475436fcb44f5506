// kpf: reads the command line, runs the command, and tells how it ended.
#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/command_line.h"
#include "tools/kpf/terminal/json.h"
#include "tools/kpf/terminal/nearest.h"
#include "tools/kpf/terminal/standard_output.h"
#include "tools/kpf/terminal/system.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;

/// Whether the user asked for a result that programs read.
bool wantsJson(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands()) {
    const CLI::Option* const json = command->get_option_no_throw("--json");
    if (json != nullptr && json->count() > 0) return true;
  }
  return false;
}

/// Whoever reads the result as JSON finds the failure there as well.
Outcome failed(const CLI::App& app, const ToolError& error) {
  if (wantsJson(app)) {
    printJson({{"error",
                {{"name", nameOf(error.outcome())},
                 {"text", error.what()},
                 {"advice", error.advice()},
                 {"exitCode", exitCodeOf(error.outcome())}}}});
  }
  return error.outcome();
}

void complain(const std::string& what, const std::string& advice) {
  tell("kpf: {}\n{}\n", what, advice);
}

Outcome report(const CLI::App& app, const ToolError& error) {
  complain(error.what(), error.advice());
  return failed(app, error);
}

/// Help and version come this way too, and are no failure.
Outcome reportUsage(const CLI::App& app, const CLI::ParseError& error) {
  if (app.exit(error) == 0) return Outcome::kDone;
  return failed(app, {Outcome::kWrongUsage, error.what(), "See --help."});
}

/// The first word is the command. @throws ToolError when there is none of that name: the parser
/// would only miss one.
void checkCommand(const CLI::App& app, int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return;
  const std::string written = argv[1];
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) {
    if (command->get_name() == written) return;
    if (!command->get_group().empty()) names.push_back(command->get_name());
  }
  const std::string nearest = nearestWord(written, names);
  throw ToolError(Outcome::kWrongUsage, fmt::format("{} is no command", quoted(written)),
                  nearest.empty() ? "See kpf --help for those there are."
                                  : fmt::format("Did you mean {}? See kpf --help.", nearest));
}

Outcome run(CLI::App& app, const Job& job, int argc, char** argv) {
  try {
    checkCommand(app, argc, argv);
    app.parse(argc, argv);
    return job();
  } catch (const CLI::ParseError& error) {
    return reportUsage(app, error);
  } catch (const ToolError& error) {
    return report(app, error);
  } catch (const KPF_READER::RecordingError& error) {
    return report(app, {Outcome::kUnreadableInput, escaped(error.what()),
                        "Give the header file (.kpf) of a recording that you may read."});
  } catch (const std::bad_alloc&) {
    return report(app, {Outcome::kFailed, "the system gives no more memory",
                        "The job was cut short. Close other programs."});
  } catch (const std::exception& error) {
    // Printing may fail in the midst of a result, which is told below.
    if (std::ferror(stdout) != 0) return Outcome::kWriteFailed;
    return report(app, {Outcome::kFailed, error.what(), "The job was cut short."});
  }
}

/// A result that could not be given is no success, whatever was done for it.
Outcome giveResult(Outcome outcome) {
  const auto problem = flushStandardOutput();
  if (!problem) return outcome;
  complain("cannot write to standard output: " + *problem, "Check where the output goes.");
  return outcome == Outcome::kDone ? Outcome::kWriteFailed : outcome;
}

int runTool(int argc, char** argv) {
  holdStandardStreams();
  CLI::App app;
  Job job;
  buildCommandLine(app, job);
  return exitCodeOf(giveResult(run(app, job, argc, argv)));
}

}  // namespace

#ifdef _WIN32

// The words of main have lost what the code page does not hold; the path of a wide one is UTF-8.
int wmain(int argc, wchar_t** argv) {
  std::vector<std::string> words;
  for (int i = 0; i < argc; ++i) words.push_back(std::filesystem::path(argv[i]).string());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return runTool(argc, pointers.data());
}

#else

// NOLINTNEXTLINE(bugprone-exception-escape): only for want of memory, before anything is done.
int main(int argc, char** argv) { return runTool(argc, argv); }

#endif

// kpf: the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "tools/kpf/info.h"
#include "tools/kpf/verify.h"

namespace {

constexpr int kNothingDone = 2;  // wrong usage, or out of memory

/// Each command keeps its options here until it runs, and leaves its exit code.
struct Commands {
  KPF_TOOL::InfoOptions info;
  KPF_TOOL::VerifyOptions verify;
  int result = 0;
};

void addInfo(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("info", "Tell what a recording is");
  command->add_option("FILE", commands.info.file, "header file (.kpf)")->required();
  command->add_flag("--json", commands.info.json, "for programs");
  command->footer("Example: kpf info clip.kpf");
  command->callback([&commands] { commands.result = KPF_TOOL::runInfo(commands.info); });
}

void addVerify(CLI::App& app, Commands& commands) {
  CLI::App* const command = app.add_subcommand("verify", "Check every byte that can be checked");
  command->add_option("FILE", commands.verify.file, "header file (.kpf)")->required();
  command->add_flag("--json", commands.verify.json, "for programs");
  command->footer("Example: kpf verify clip.kpf && echo sound");
  command->callback([&commands] { commands.result = KPF_TOOL::runVerify(commands.verify); });
}

}  // namespace

int main(int argc, char** argv) try {
  CLI::App app{"Records mono video, and looks after the recordings."};
  app.set_version_flag("--version", "kpf " KPF_VERSION);
  app.require_subcommand(1);
  Commands commands;
  addInfo(app, commands);
  addVerify(app, commands);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kNothingDone;
  }
  return commands.result;
} catch (const std::exception& error) {
  std::fprintf(stderr, "kpf: %s\n", error.what());
  return kNothingDone;
}

#include "tools/kpf/command_line.h"

#include "tools/kpf/commands/commands.h"

namespace KPF_TOOL {

void buildCommandLine(CLI::App& app, Job& job) {
  app.name("kpf");
  app.description("Records mono video, and looks after the recordings.");
  app.set_version_flag("--version", "kpf " KPF_VERSION);
  // Not even on Windows: there, too, a word that begins with a slash is a path.
  app.allow_windows_style_options(false);
  app.require_subcommand(1);
  for (AddCommand* const add : kCommands) add(app, job);
}

}  // namespace KPF_TOOL

// kpf view: recordings in the browser.
#include "tools/kpf/view/view.h"

#include "tools/kpf/commands/commands.h"

namespace KPF_TOOL {

void addView(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "view", "Look at recordings in the browser", view);
  line.add_option("FILE", options.files, "header files (.kpf); several are shown side by side")
      ->required();
  line.add_flag("--live", options.live, "begin at the newest frame and follow it");
  line.add_option("--port", options.port, "of 127.0.0.1, instead of any that is free")
      ->check(CLI::Range(1, 65535))
      ->transform(decimal());
  line.add_option("--scale", options.scale, "millimetres a pixel")->check(positive());
  line.add_flag("--no-browser", options.noBrowser, "only print the address");
  addFooter(line, "kpf view clip.kpf",
            {"ended by Ctrl-C", "", "wrong usage, or a recording that cannot be read"});
}

}  // namespace KPF_TOOL

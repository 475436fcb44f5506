#include "tools/kpf/commands/lost_list.h"

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "paths/native_path.h"
#include "tools/kpf/terminal/tell.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {

void addLost(CLI::App& line, std::string& lost) {
  line.add_option("--lost", lost,
                  "instead of lost frames: repeat the one before (black for .raw, -), black, skip")
      ->check(CLI::IsMember({"repeat", "black", "skip"}));
}

LostList::LostList(const Destination& output) : list_(output) {
  list_.name = output.name == "-" ? "" : output.name + ".lost.txt";
  if (!list_.name.empty()) checkFree(list_.name, list_);
}

void LostList::finish(const LostFrames& lost, const std::string& input,
                      std::uint64_t frames) const {
  if (lost.count() > 0) {
    std::string line = fmt::format("{}: {} of {} {} lost ({}), {}", escaped(input), lost.count(),
                                   countText(frames, "frame"), lost.count() == 1 ? "was" : "were",
                                   lost.text(), lost.shownText());
    if (!list_.name.empty()) line += fmt::format("; {} lists them", escaped(list_.name));
    tell("kpf: {}\n", line);
  }
  if (list_.name.empty()) return;
  if (lost.count() > 0) {
    const std::string text = lost.list();
    NewFile file(list_.name, list_);
    file.write(text.data(), text.size());
    file.commit();
  } else if (list_.force) {
    std::error_code none;
    std::filesystem::remove(PATHS::nativePath(list_.name), none);
  }
}

}  // namespace KPF_TOOL

#include "tools/kpf/view/job_request.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kLongestName = 200;

std::string pathOf(const std::string& name) { return name.starts_with('/') ? name : "./" + name; }

void addNumber(std::vector<std::string>& arguments, const char* option, const Json& wanted,
               const char* name) {
  if (!wanted.contains(name) || wanted[name].is_null()) return;
  arguments.insert(arguments.end(), {option, fmt::format("{}", wanted[name].get<double>())});
}

void addRange(std::vector<std::string>& arguments, const Json& wanted) {
  for (const auto& [option, name] : {std::pair{"--from", "from"}, {"--to", "to"}}) {
    if (!wanted.contains(name) || wanted[name].is_null()) continue;
    arguments.insert(arguments.end(), {option, std::to_string(wanted[name].get<std::uint32_t>())});
  }
}

}  // namespace

std::vector<std::string> offeredJobs() { return {"still", "export", "cut", "amplify"}; }

std::string checkedNewName(const std::string& name) {
  const bool plain = !name.empty() && name.size() <= kLongestName && name.front() != '.' &&
                     name.find('/') == std::string::npos &&
                     std::all_of(name.begin(), name.end(), [](char character) {
                       return static_cast<unsigned char>(character) >= 0x20 && character != 0x7F;
                     });
  if (!plain) {
    throw ToolError(Outcome::kWrongUsage, quoted(name) + " is no name for a file",
                    "Give one without any folder.");
  }
  struct stat status {};
  if (lstat(name.c_str(), &status) == 0) {
    throw ToolError(Outcome::kRefused, escaped(name) + " exists already", "Choose another name.");
  }
  return "./" + name;
}

std::vector<std::string> argumentsOf(const Json& wanted, const std::string& recording) {
  const auto kind = wanted.at("kind").get<std::string>();
  const std::string output = checkedNewName(wanted.at("name").get<std::string>());
  const bool amplifies = kind == "amplify" || kind == "compare";
  const auto offered = offeredJobs();
  if (!amplifies &&
      (kind == "still" || std::find(offered.begin(), offered.end(), kind) == offered.end())) {
    throw ToolError(Outcome::kWrongUsage, "there is no such job", "Load the page again.");
  }
  std::vector<std::string> arguments{amplifies ? "amplify" : kind, pathOf(recording), output};
  addRange(arguments, wanted);
  if (amplifies) {
    addNumber(arguments, "--frequency", wanted, "frequency");
    addNumber(arguments, "--gain", wanted, "gain");
    if (kind == "compare") arguments.emplace_back("--compare");
    if (wanted.value("clean", false)) arguments.emplace_back("--clean");
  }
  if (kind != "cut") arguments.emplace_back("--quiet");
  return arguments;
}

}  // namespace KPF_TOOL

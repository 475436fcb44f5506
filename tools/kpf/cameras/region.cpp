#include "tools/kpf/cameras/region.h"

#include <fmt/format.h>

#include <regex>

#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

Region parseRegion(const std::string& text) {
  static const std::regex form(R"(([1-9]\d{0,4})x([1-9]\d{0,4})(?:\+(\d{1,5})\+(\d{1,5}))?)");
  std::smatch match;
  if (!std::regex_match(text, match, form)) {
    throw ToolError(Outcome::kWrongUsage, fmt::format("{} is no region", quoted(text)),
                    "Write --region like 640x480, or 640x480+16+8 with its corner.");
  }
  Region region{std::stoi(match[1].str()), std::stoi(match[2].str())};
  if (match[3].matched) {
    region.x = std::stoi(match[3].str());
    region.y = std::stoi(match[4].str());
  }
  return region;
}

}  // namespace KPF_TOOL

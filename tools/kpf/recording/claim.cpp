#include "tools/kpf/recording/claim.h"

#include <fmt/format.h>

#include <system_error>

#include "format/kpf_file_names.h"
#include "paths/native_path.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace fs = std::filesystem;
namespace {

std::string folderOf(const std::string& header) { return KPF_FORMAT::dataNamesOf(header).folder; }

[[noreturn]] void refuse(const std::string& header) {
  throw ToolError(Outcome::kRefused, fmt::format("{} is being written", escaped(header)),
                  "Wait until the other kpf has ended, or choose another name.");
}

}  // namespace

void checkUnclaimed(const std::string& header) {
  if (FolderLock(folderOf(header)).isOthers()) refuse(header);
}

Claim::Claim(const std::string& header)
    : header_(header), folder_(PATHS::nativePath(folderOf(header))) {
  std::error_code unmade;  // which whoever writes there will meet, and tell
  made_ = fs::create_directory(folder_, unmade);
  lock_.emplace(folderOf(header));
}

Claim::~Claim() {
  std::error_code inUse;
  if (made_ && !isOthers()) fs::remove(folder_, inUse);
}

void Claim::demand() const {
  if (isOthers()) refuse(header_);
}

}  // namespace KPF_TOOL

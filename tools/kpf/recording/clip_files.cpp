#include "tools/kpf/recording/clip_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tools/kpf/recording/record_stamp.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

ClipFiles::ClipFiles(const ClipTarget& target,
                     const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration,
                     CapturedOutput& captured)
    : target_(target), configuration_(configuration), captured_(captured) {}

std::string ClipFiles::claimedName() {
  claim_.emplace(target_.header);
  claim_->demand();
  clearTarget(target_.header, target_.force, target_.input);
  return target_.header;
}

/// Nothing that is there already is touched.
std::string ClipFiles::claimedNumber() {
  const std::filesystem::path path(target_.header);
  for (unsigned number = 1;; ++number) {
    std::filesystem::path name = path;
    name.replace_filename(
        fmt::format("{}_{:04}{}", path.stem().string(), number, path.extension().string()));
    if (!filesOf(name.string()).empty()) continue;
    claim_.emplace(name.string());
    // Once more: another process may have been faster.
    if (!claim_->isOthers() && filesOf(name.string()).empty()) return name.string();
  }
}

void ClipFiles::begin() {
  present_ = {};
  present_.header = target_.numbered ? claimedNumber() : claimedName();
  stream_ = std::make_unique<LibraryStream>(present_.header, configuration_);
  if (stream_->isOpen()) return;
  stream_.reset();
  throw ToolError(Outcome::kRefused, fmt::format("cannot begin {}", escaped(present_.header)),
                  "See the lines above.");
}

void ClipFiles::add(unsigned char* record) {
  stampNumber(record, present_.frames++);
  const auto begin = std::chrono::steady_clock::now();
  stream_->addRecord(record);
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  worstCall_ = std::max(worstCall_, took.count());
}

void ClipFiles::addPlaceholder() {
  ++present_.frames;
  ++present_.placeholders;
  stream_->addPlaceholder();
}

// A header that announces more than there is makes the library complain; once the number is set
// right there is nothing left of that.
void ClipFiles::end() {
  const bool complaints = captured_.any();
  stream_->close();
  const bool whole = !complaints && recordsOnDisk(present_.header) == present_.frames;
  present_.whole = stream_->announce(present_.frames, whole) && whole;
  if (present_.whole) captured_.drop();
  stream_.reset();
  claim_.reset();
  clips_.push_back(present_);
}

}  // namespace KPF_TOOL

#include "tools/kpf/records/record_walk.h"

#include <fmt/format.h>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

std::string areText(std::uint64_t frames) {
  return countText(frames, "frame") + (frames == 1 ? " is" : " are");
}

}  // namespace

std::optional<Record> RecordWalk::at(std::uint32_t place) {
  try {
    if (records_.fileOf(place) != nullptr) return records_.read(place);
    if (missing_++ == 0) firstMissing_ = place;
  } catch (const KPF_READER::RecordingError& error) {
    if (unreadable_++ == 0) unreadableText_ = error.what();
  }
  return std::nullopt;
}

std::string RecordWalk::flaw() const {
  std::string text;
  if (missing_ != 0) {
    text = fmt::format("{} missing, the first is {}", areText(missing_), firstMissing_);
  }
  if (unreadable_ != 0) {
    text += fmt::format("{}{} unreadable ({})", text.empty() ? "" : ", ", areText(unreadable_),
                        escaped(unreadableText_));
  }
  return text;
}

std::string RecordWalk::earlyEnd() const {
  if (places_ >= announced_) return "";
  return fmt::format("the recording ends after {} of {} announced frames", places_, announced_);
}

}  // namespace KPF_TOOL

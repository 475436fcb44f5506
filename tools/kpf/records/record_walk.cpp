#include "tools/kpf/records/record_walk.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <vector>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {

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
  std::vector<std::string> flaws;
  if (missing_ != 0) {
    flaws.push_back(
        fmt::format("{} missing, the first is {}", areText(missing_, "frame"), firstMissing_));
  }
  if (unreadable_ != 0) {
    flaws.push_back(
        fmt::format("{} unreadable ({})", areText(unreadable_, "frame"), escaped(unreadableText_)));
  }
  if (const std::uint64_t bytes = bytesOfNoFrame(recording_)) {
    flaws.push_back(countText(bytes, "byte") + " in its data files are of no frame");
  }
  if (isReplaced(recording_)) flaws.emplace_back("another recording has taken its place meanwhile");
  return fmt::format("{}", fmt::join(flaws, ", "));
}

std::string RecordWalk::wrongEnd() const {
  const std::uint32_t announced = recording_.header().frameCount;
  if (places_ < announced) {
    return announcesCount(recording_.header())
               ? fmt::format("the recording ends after {} of {} announced frames", places_,
                             announced)
               : fmt::format("the recording ends after {}, and was never closed",
                             countText(places_, "frame"));
  }
  const std::uint64_t more = recordsBehindEnd(recording_);
  return more == 0 ? "" : fmt::format("{} behind the announced end", areText(more, "frame"));
}

}  // namespace KPF_TOOL

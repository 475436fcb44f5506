#include "tools/kpf/view/shown_recording.h"

#include <utility>

#include "tools/kpf/records/records.h"

namespace KPF_TOOL {

using KPF_READER::Access;
using KPF_READER::Header;
using KPF_READER::Recording;
using KPF_READER::RecordingError;

namespace {

// How long what was found out about the files is believed while they may grow.
constexpr auto kBelieved = std::chrono::milliseconds(200);

bool sameShape(const Header& a, const Header& b) {
  return a.width == b.width && a.height == b.height && a.packed12 == b.packed12 &&
         a.frameRate == b.frameRate && a.framesPerDivFile == b.framesPerDivFile;
}

}  // namespace

ShownRecording::ShownRecording(const std::string& path)
    : path_(path),
      recording_(std::make_shared<const Recording>(path, Access::kSparse)),
      header_(recording_->header()),
      lookedAt_(Clock::now()) {}

std::shared_ptr<const Recording> ShownRecording::now() {
  const std::lock_guard lock(mutex_);
  if (Clock::now() - lookedAt_ < kBelieved) return recording_;
  auto found = recording_;
  // A complete recording does not grow.
  if (found->recordCount() != header_.frameCount) {
    found = std::make_shared<const Recording>(path_, Access::kSparse);
  }
  if (isReplaced(*recording_) || !sameShape(found->header(), header_)) {
    throw RecordingError(path_, 0, "another recording has taken its place: start kpf view again");
  }
  recording_ = std::move(found);
  lookedAt_ = Clock::now();
  return recording_;
}

std::uint32_t ShownRecording::places() { return Records(*now(), Access::kSparse).places(); }

}  // namespace KPF_TOOL

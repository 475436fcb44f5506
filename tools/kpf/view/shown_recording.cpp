#include "tools/kpf/view/shown_recording.h"

#include <algorithm>
#include <optional>

namespace KPF_TOOL {

using KPF_READER::Access;
using KPF_READER::DivFile;
using KPF_READER::Header;
using KPF_READER::Recording;
using KPF_READER::RecordingError;

namespace {

// How long what was found out about the files is believed while they may grow.
constexpr auto kBelieved = std::chrono::milliseconds(200);
// How long one look for lost frames holds up those who want pictures.
constexpr auto kSearchTime = std::chrono::milliseconds(20);

bool sameShape(const Header& a, const Header& b) {
  return a.width == b.width && a.height == b.height && a.packed12 == b.packed12 &&
         a.frameRate == b.frameRate && a.framesPerDivFile == b.framesPerDivFile;
}

void append(LostPlaces& lost, std::uint32_t place) {
  if (!lost.empty() && lost.back().second + 1 == place) {
    lost.back().second = place;
  } else {
    lost.emplace_back(place, place);
  }
}

}  // namespace

ShownRecording::ShownRecording(const std::string& path)
    : path_(path),
      recording_(std::make_unique<Recording>(path, Access::kSparse)),
      header_(recording_->header()),
      lookedAt_(Clock::now()) {}

// A complete recording does not grow, and keeps the file that it has mapped.
void ShownRecording::follow() {
  if (recording_->recordCount() == header_.frameCount) return;
  if (Clock::now() - lookedAt_ < kBelieved) return;
  auto now = std::make_unique<Recording>(path_, Access::kSparse);
  if (!sameShape(now->header(), header_)) {
    throw RecordingError(path_, 0, "another recording has taken its place: start kpf view again");
  }
  if (now->recordCount() != recording_->recordCount()) recording_ = std::move(now);
  lookedAt_ = Clock::now();
}

std::uint32_t ShownRecording::placesThere() const {
  const auto& files = recording_->divFiles();
  const auto last = std::find_if(files.rbegin(), files.rend(),
                                 [](const DivFile& file) { return file.records > 0; });
  return last == files.rend() ? 0 : (last->number - 1) * header_.framesPerDivFile + last->records;
}

std::uint32_t ShownRecording::places() {
  const std::lock_guard lock(mutex_);
  follow();
  return placesThere();
}

ShownFrame ShownRecording::fetch(std::uint32_t place) const {
  ShownFrame frame;
  const std::uint32_t number = place / header_.framesPerDivFile + 1;
  const std::uint32_t index = place % header_.framesPerDivFile;
  const auto& files = recording_->divFiles();
  const auto file = std::find_if(files.begin(), files.end(),
                                 [=](const DivFile& one) { return one.number == number; });
  if (file != files.end() && index < file->records) {
    try {
      frame.record = recording_->record(file->firstRecord + index);
      frame.state = frame.record.placeholder ? FrameState::kPlaceholder : FrameState::kThere;
    } catch (const RecordingError&) {
      frame.state = FrameState::kUnreadable;
    }
  }
  frame.record.place = place;
  return frame;
}

ShownFrame ShownRecording::frame(std::uint32_t place) {
  const std::lock_guard lock(mutex_);
  return fetch(place);
}

std::pair<LostPlaces, std::uint32_t> ShownRecording::lostFrom(std::uint32_t from) {
  const std::lock_guard lock(mutex_);
  follow();
  LostPlaces lost;
  const std::uint32_t end = placesThere();
  const auto until = Clock::now() + kSearchTime;
  std::uint32_t place = from;
  for (; place < end && Clock::now() < until; ++place) {
    if (fetch(place).state != FrameState::kThere) append(lost, place);
  }
  return {lost, place};
}

}  // namespace KPF_TOOL

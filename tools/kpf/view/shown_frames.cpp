#include "tools/kpf/view/shown_frames.h"

#include <algorithm>
#include <chrono>

namespace KPF_TOOL {
namespace {

using Clock = std::chrono::steady_clock;

// How long one look for lost frames holds up those who want pictures.
constexpr auto kSearchTime = std::chrono::milliseconds(20);

void append(LostPlaces& lost, std::uint32_t place) {
  if (!lost.empty() && lost.back().second + 1 == place) {
    lost.back().second = place;
  } else {
    lost.emplace_back(place, place);
  }
}

}  // namespace

ShownFrames::ShownFrames(ShownRecording& recording)
    : recording_(recording.now()), records_(*recording_, KPF_READER::Access::kSparse) {}

ShownFrame ShownFrames::look(std::uint32_t place, bool whole) {
  ShownFrame frame;
  try {
    if (records_.fileOf(place) != nullptr) {
      frame.record = whole ? records_.read(place) : records_.readHeader(place);
      frame.state = frame.record.placeholder ? FrameState::kPlaceholder : FrameState::kThere;
    }
  } catch (const KPF_READER::RecordingError&) {
    frame.state = FrameState::kUnreadable;
  }
  frame.record.place = place;
  return frame;
}

ShownFrame ShownFrames::at(std::uint32_t place) { return look(place, true); }

std::pair<LostPlaces, std::uint32_t> ShownFrames::lostFrom(std::uint32_t from) {
  LostPlaces lost;
  const auto until = Clock::now() + kSearchTime;
  std::uint32_t place = from;
  for (; place < places() && Clock::now() < until; ++place) {
    if (look(place, false).state != FrameState::kThere) append(lost, place);
  }
  return {lost, place};
}

}  // namespace KPF_TOOL

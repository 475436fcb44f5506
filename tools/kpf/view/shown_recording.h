// One recording that is looked at, perhaps while it grows.
#ifndef KPF_SHOWN_RECORDING_H
#define KPF_SHOWN_RECORDING_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "kpf_reader.h"

namespace KPF_TOOL {

/// How the frame of a place is there, numbered as the page knows it.
enum class FrameState : std::uint32_t {
  kThere = 0,
  kPlaceholder = 1,  // recorded as lost
  kMissing = 2,      // its data file, or the end of that, is not there
  kUnreadable = 3    // the disk does not give it
};

struct ShownFrame {
  FrameState state = FrameState::kMissing;
  KPF_READER::FrameRecord record;  // empty where the frame is lost, except its place
};

/// Places, both included, at which nothing is there to be shown.
using LostPlaces = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

/// Gives the frames of a recording by their places. Any thread may ask.
class ShownRecording {
 public:
  /// @throws KPF_READER::RecordingError.
  explicit ShownRecording(const std::string& path);

  const std::string& path() const { return path_; }
  const KPF_READER::Header& header() const { return header_; }

  /// One more than the last place whose record is there; grows with the recording.
  std::uint32_t places();

  ShownFrame frame(std::uint32_t place);

  /// Looks for lost frames from `from` on, for as long as a request may take.
  /// @return them, and the place before which all were looked at.
  std::pair<LostPlaces, std::uint32_t> lostFrom(std::uint32_t from);

 private:
  using Clock = std::chrono::steady_clock;

  void follow();
  std::uint32_t placesThere() const;
  ShownFrame fetch(std::uint32_t place) const;

  std::string path_;
  std::mutex mutex_;  // one thread at a time may use a Recording
  std::unique_ptr<KPF_READER::Recording> recording_;
  KPF_READER::Header header_;  // stays as it was at first
  Clock::time_point lookedAt_;
};

}  // namespace KPF_TOOL

#endif

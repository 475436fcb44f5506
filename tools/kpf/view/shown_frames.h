// The frames of a recording that is looked at.
#ifndef KPF_SHOWN_FRAMES_H
#define KPF_SHOWN_FRAMES_H

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/records/records.h"
#include "tools/kpf/view/shown_recording.h"

namespace KPF_TOOL {

/// How the frame of a place is there, numbered as the page knows it.
enum class FrameState : std::uint32_t {
  kThere = 0,
  kPlaceholder = 1,  // recorded as lost
  kMissing = 2,      // its data file, or the end of that, is not there
  kUnreadable = 3    // the disk does not give it, or the file has become shorter
};

struct ShownFrame {
  FrameState state = FrameState::kMissing;
  Record record;  // empty where the frame is lost, except its place
};

/// Places, both included, at which nothing is there to be shown.
using LostPlaces = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

/// Reads frames by their places, for one thread; each request has one of its own, and none waits
/// for another. Whatever happens to the files meanwhile is the state of a frame, never the end of
/// the process.
class ShownFrames {
 public:
  /// Those that are there now. @throws KPF_READER::RecordingError.
  explicit ShownFrames(ShownRecording& recording);

  /// One more than the last place whose record is there.
  std::uint32_t places() const { return records_.places(); }

  /// Its record is valid until the next one is asked for.
  ShownFrame at(std::uint32_t place);

  /// Looks for lost frames from `from` on, for as long as a request may take.
  /// @return them, and the place before which all were looked at.
  std::pair<LostPlaces, std::uint32_t> lostFrom(std::uint32_t from);

 private:
  /// @param whole whether its pixels are wanted.
  ShownFrame look(std::uint32_t place, bool whole);

  std::shared_ptr<const KPF_READER::Recording> recording_;
  Records records_;
};

}  // namespace KPF_TOOL

#endif

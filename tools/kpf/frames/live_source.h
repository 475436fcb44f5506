// Frames as a camera delivers them: some are good, some are not, some never come.
#ifndef KPF_LIVE_SOURCE_H
#define KPF_LIVE_SOURCE_H

#include <cstdint>
#include <string>

namespace KPF_TOOL {

/// What a camera delivered, or did not.
struct LiveFrame {
  enum class State {
    kGood,
    kIncomplete,  // parts of it are missing; its id, time and pixels mean nothing
    kNone,        // nothing came for a while
    kEnd          // nothing will come any more
  };

  State state = State::kNone;
  std::uint64_t id = 0;             // as the camera counts: it may skip, and begin again
  std::uint64_t cameraTime = 0;     // nanoseconds of the camera's clock; 0 where it has none
  std::uint64_t arrival = 0;        // nanoseconds since 1970, by the system's clock
  unsigned char* record = nullptr;  // room for the record's header, then the pixels as recorded
};

/// A camera that runs, or whatever gives its frames in its own time.
class LiveSource {
 public:
  virtual ~LiveSource() = default;

  /// The next frame; a short wait where there is none yet. What `record` points to may be written
  /// to, and is good until the next call.
  virtual LiveFrame next() = 0;

  /// Frames that have come and were not taken yet.
  virtual unsigned waiting() const { return 0; }

  /// At the end: why it came, where nobody asked for it.
  virtual std::string trouble() const { return {}; }
};

}  // namespace KPF_TOOL

#endif

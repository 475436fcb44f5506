// How cameras number their frames.
#ifndef KPF_FRAME_IDS_H
#define KPF_FRAME_IDS_H

#include <cstdint>
#include <optional>

namespace KPF_TOOL {

/**
 * Turns the ids of good frames into places that only grow.
 *
 * GigE Vision counts to 65535 and goes on with 1, leaving 0 out; its extended ids and USB3 Vision
 * count in 64 bits. Which of them a camera does shows once an id is larger than 65535.
 */
class FrameIds {
 public:
  /// @param due frames that the time since the frame before has room for: it tells how often the
  ///        ids began again behind a long silence.
  /// @return the place, 0 for the first frame; nothing for a frame that comes behind its successor.
  std::optional<std::uint64_t> placeOf(std::uint64_t id, double due = 1);

 private:
  std::int64_t stepTo(std::uint64_t id, double due) const;

  bool begun_ = false;
  bool wide_ = false;  // ids of more than 16 bits were seen
  std::uint64_t last_ = 0;
  std::uint64_t place_ = 0;
};

}  // namespace KPF_TOOL

#endif

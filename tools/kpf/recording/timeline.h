// Where in a recording each frame belongs.
#ifndef KPF_TIMELINE_H
#define KPF_TIMELINE_H

#include <cstdint>
#include <optional>

namespace KPF_TOOL {

/// Tells the place of each frame: the next one, or, where gaps are filled, that of its time.
class Timeline {
 public:
  /// @param rate frames per second of the recording, above 0.
  Timeline(bool fillGaps, double rate) : fillGaps_(fillGaps), rate_(rate) {}

  /// @param time of the next frame of the input, in seconds; nothing where the input does not say.
  /// @return its place, counted from 0, and always behind that of the frame before.
  std::uint64_t placeOf(std::optional<double> time);

 private:
  bool fillGaps_;
  double rate_;
  std::optional<double> origin_;  // what the time of the frame at place 0 would be
  std::uint64_t next_ = 0;        // the earliest place that is free
};

}  // namespace KPF_TOOL

#endif

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
  /// @param inputRate those of the input, where its frames follow each other whatever their times.
  Timeline(bool fillGaps, double rate, double inputRate = 0)
      : fillGaps_(fillGaps), rate_(rate), inputRate_(inputRate > 0 ? inputRate : rate) {}

  /// @param time of the next frame of the input, in seconds; nothing where the input does not say.
  /// @return its place, counted from 0, and always behind that of the frame before.
  std::uint64_t placeOf(std::optional<double> time);

  /// Whether each frame so far stands where its time says, but for the rounding of times.
  bool keepsTime() const { return !moved_; }
  /// Seconds from the first frame's beginning to the last one's end, by the times of the input.
  double inputSeconds() const;
  /// The same by their places, at the input's rate.
  double placedSeconds() const { return static_cast<double>(next_) / pace(); }

 private:
  double pace() const { return fillGaps_ ? rate_ : inputRate_; }
  void watch(double time, std::uint64_t place);

  bool fillGaps_;
  double rate_;
  double inputRate_;
  std::optional<double> origin_;  // what the time of the frame at place 0 would be
  double latest_ = 0;             // of the times so far
  std::uint64_t next_ = 0;        // the earliest place that is free
  bool moved_ = false;
};

}  // namespace KPF_TOOL

#endif

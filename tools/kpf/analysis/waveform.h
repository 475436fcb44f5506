// A figure that changes from frame to frame.
#ifndef KPF_WAVEFORM_H
#define KPF_WAVEFORM_H

#include <cstddef>
#include <vector>

namespace KPF_TOOL {

/**
 * One value a frame, the lost ones included.
 *
 * A lost frame is never taken for black: it is flagged, and bridged by the straight line between
 * the values beside it (at either end by the nearest one), so that a spectrum sees no jump. What a
 * bridge hides is the motion within it: a gap should be short against a cycle.
 */
class Waveform {
 public:
  /// @param rate frames per second.
  explicit Waveform(double rate) : rate_(rate) {}

  void add(double value);
  void addLost();

  double rate() const { return rate_; }
  /// Complete at any time: what follows only changes the bridge that it ends.
  const std::vector<double>& values() const { return values_; }
  /// For each value whether its frame was lost.
  const std::vector<bool>& lost() const { return lost_; }
  std::size_t lostFrames() const { return lostFrames_; }
  double mean() const;

 private:
  double rate_;
  std::vector<double> values_;
  std::vector<bool> lost_;
  std::size_t lostFrames_ = 0;
  std::size_t gap_ = 0;  // lost frames at the end
};

}  // namespace KPF_TOOL

#endif

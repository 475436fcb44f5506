// An event that the picture itself tells.
#ifndef KPF_MOTION_TRIGGER_H
#define KPF_MOTION_TRIGGER_H

#include <cstddef>
#include <vector>

#include "tools/kpf/recording/trigger.h"

namespace KPF_TOOL {

/// Fires when frames are brighter, in the mean of all pixels, than the motion amplifier's reference
/// by more than a level of grey. Of 12-bit pixels the upper 8 bits are compared.
class MotionTrigger : public Trigger {
 public:
  /// Frames of the window. A still scene of level v is brighter than its reference by v / 30.
  static constexpr int kWindow = 30;

  MotionTrigger(double level, unsigned width, unsigned height, bool packed12);
  ~MotionTrigger() override { close(); }
  MotionTrigger(const MotionTrigger&) = delete;
  MotionTrigger& operator=(const MotionTrigger&) = delete;

  bool fires(const unsigned char* pixels) override;
  void arm() override;
  /// Of the newest frame; 0 while the window fills.
  double level() const { return newest_; }

 private:
  void close();

  double level_;
  double newest_ = 0;
  unsigned width_;
  unsigned height_;
  bool packed12_;
  unsigned amplifier_ = 0;  // handle
  std::vector<unsigned char> reference_;
  std::vector<unsigned char> bytes_;  // of the newest frame, a byte a pixel
};

}  // namespace KPF_TOOL

#endif

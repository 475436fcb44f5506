// What a recording waits for, and how long it goes on then.
#ifndef KPF_EVENT_H
#define KPF_EVENT_H

#include <memory>
#include <string>
#include <utility>

#include "tools/kpf/recording/live_recorder.h"
#include "tools/kpf/recording/motion_trigger.h"
#include "tools/kpf/recording/trigger.h"
#include "tools/kpf/terminal/start_signal.h"

namespace KPF_TOOL {

/// LEVEL of "motion:LEVEL". @throws ToolError.
double parseMotionLevel(const std::string& text);

/// As many frames as the rate has in that time, or fewer where the camera keeps to a lower one.
ClipLimit lasting(double seconds, double rate);

/// "100" frames, or "2.5s" at a frame rate. @throws ToolError.
ClipLimit parseAfter(const std::string& text, double rate);

/// Enter and SIGUSR1, and motion where that is asked for.
class Event : public Trigger {
 public:
  /// @param motion null where only the user tells.
  Event(bool readsKeys, std::unique_ptr<MotionTrigger> motion)
      : signal_(readsKeys), motion_(std::move(motion)) {}

  bool fires(const unsigned char* pixels) override;
  void arm() override;
  /// Level of motion in the newest frame; null where nobody looks.
  const MotionTrigger* motion() const { return motion_.get(); }

 private:
  StartSignal signal_;
  std::unique_ptr<MotionTrigger> motion_;
};

}  // namespace KPF_TOOL

#endif

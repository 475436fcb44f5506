// What ends the wait for an event.
#ifndef KPF_TRIGGER_H
#define KPF_TRIGGER_H

namespace KPF_TOOL {

class Trigger {
 public:
  virtual ~Trigger() = default;
  /// To be asked for every frame while nothing is recorded, and now and then while none comes.
  /// @param pixels of the newest frame as they are recorded; null where there is no new one.
  virtual bool fires(const unsigned char* pixels) = 0;
  /// Forgets what it saw so far.
  virtual void arm() {}
};

}  // namespace KPF_TOOL

#endif

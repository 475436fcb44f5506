// Amplified frames of any place, at once where they follow each other.
#ifndef KPF_LIVE_AMPLIFIER_H
#define KPF_LIVE_AMPLIFIER_H

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "tools/kpf/view/amplified_pictures.h"

namespace KPF_TOOL {

/// What is amplified, and how.
struct Amplification {
  std::string recording;
  double frequency = 1;  // of the motion, in hertz
  double gain = 4;
  bool clean = false;   // see CleanAmplifier; else as the library does it
  bool marked = false;  // whether marks are wanted
};

/**
 * The same pictures as kpf amplify makes, from the same source and amplifiers.
 *
 * The frame behind the last one costs one step, and those just before it, of which several requests
 * may be under way, none; any other one fills the window anew, as `kpf amplify --from` does.
 */
class LiveAmplifier {
 public:
  LiveAmplifier();
  ~LiveAmplifier();
  LiveAmplifier(const LiveAmplifier&) = delete;
  LiveAmplifier& operator=(const LiveAmplifier&) = delete;

  /// Any thread may ask. @throws ToolError where the frequency does not go with the recording.
  AmplifiedPictures at(const Amplification& wanted, std::uint32_t place);

 private:
  class Window;

  Moment momentAt(const Amplification& wanted, std::uint32_t place);

  std::mutex mutex_;  // the library's amplifiers share a table
  std::map<std::string, std::unique_ptr<Window>> windows_;  // the last one of each recording
};

}  // namespace KPF_TOOL

#endif

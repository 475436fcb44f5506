// Amplified frames of any place, at once where they follow each other.
#ifndef KPF_LIVE_AMPLIFIER_H
#define KPF_LIVE_AMPLIFIER_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tools/kpf/frames/amplifier.h"
#include "tools/kpf/frames/frame_source.h"

namespace KPF_TOOL {

/// What is amplified, and how.
struct Amplification {
  std::string recording;
  double frequency = 1;  // of the motion, in hertz
  double gain = 4;
  bool clean = false;  // see CleanAmplifier; else as the library does it
  bool operator==(const Amplification&) const = default;
};

/// The pictures of one place, 8 bits a sample. As vectors that nobody changes they can be sent
/// while the next ones are made.
struct AmplifiedPictures {
  using Picture = std::shared_ptr<const std::vector<unsigned char>>;
  Picture reference, amplified;
  Picture marks;  // kWraps, kClips, or 0
  std::uint32_t wraps = 0, clips = 0;
  bool windowFull = false;  // before that, frames pass unchanged
};

/// A pixel's gain as the page marks it.
enum Mark : unsigned char { kUnmarked = 0, kClips = 1, kWraps = 2 };

/**
 * The same pictures as kpf amplify makes, from the same source and amplifiers.
 *
 * The frame behind the last one costs one step; any other one fills the window anew, as `kpf
 * amplify --from` does. The library's amplifiers share a table, so all goes through one lock.
 */
class LiveAmplifier {
 public:
  /// @throws ToolError where the frequency does not go with the recording.
  AmplifiedPictures at(const Amplification& wanted, std::uint32_t place);

 private:
  struct Running;

  bool canGoOnTo(const Amplification& wanted, std::uint32_t place) const;
  void step();
  bool windowIsFull() const;
  AmplifiedPictures libraryPictures() const;
  AmplifiedPictures cleanPictures() const;

  std::mutex mutex_;
  std::shared_ptr<Running> running_;
};

}  // namespace KPF_TOOL

#endif

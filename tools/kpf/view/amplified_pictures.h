// A frame and its reference, with a gain.
#ifndef KPF_AMPLIFIED_PICTURES_H
#define KPF_AMPLIFIED_PICTURES_H

#include <cstdint>
#include <memory>
#include <vector>

namespace KPF_TOOL {

/// Samples of 8 bits that nobody changes any more: they are sent while the next ones are made.
using SharedPicture = std::shared_ptr<const std::vector<unsigned char>>;

/// What the library's amplifier knew when a frame was its newest.
struct Moment {
  std::uint32_t place = 0;
  SharedPicture frame;      // the newest one; the one before where that of the place was lost
  SharedPicture reference;  // as the library delivers it
  bool windowFull = false;  // before that, frames pass unchanged
  int window = 0;           // its size, W
};

/// A pixel's gain as the page marks it.
enum Mark : unsigned char { kUnmarked = 0, kClips = 1, kWraps = 2 };

struct AmplifiedPictures {
  SharedPicture reference, amplified;
  SharedPicture marks;  // a Mark a pixel; only where they were wanted
  std::uint32_t wraps = 0, clips = 0;
  bool windowFull = false;
};

/**
 * The picture that `kpf amplify` makes of the moment, to the byte; clean as CleanAmplifier has it,
 * else as the library does.
 *
 * The gain needs no window: so it can be turned while the motion runs.
 */
AmplifiedPictures picturesOf(const Moment& moment, double gain, bool clean, bool marked);

}  // namespace KPF_TOOL

#endif

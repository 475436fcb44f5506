// The second way of amplifying: only what moves changes.
#ifndef KPF_CLEAN_AMPLIFIER_H
#define KPF_CLEAN_AMPLIFIER_H

#include <array>
#include <cstddef>
#include <span>

namespace KPF_TOOL {

/**
 * Amplifies from what the library delivers, the newest frame and the reference.
 *
 * The library divides the sum of W - 1 frames by W, so its reference lies below their mean: here it
 * is raised again. What differs is multiplied whichever sign it has, and saturates at 0 and 255. A
 * still scene comes out exactly as it is.
 *
 * The reference is a whole number, cut off, from which the mean is known only to within one level.
 * There is one whole level in it, or two: then the one nearer to the frame is taken.
 */
class CleanAmplifier {
 public:
  /// @param window what vxMAGetRefWindowSize tells, W; below 2 nothing is corrected.
  CleanAmplifier(int window, double gain);

  /// A gain for the frames to come; one that is no number counts as 0.
  void setGain(double gain);

  /// @param frame the newest one; @param reference the library's; @param out of their size.
  void amplify(std::span<const unsigned char> frame, std::span<const unsigned char> reference,
               std::span<unsigned char> out) const;

  /// The reference that amplify() measures from, as a picture.
  void correct(std::span<const unsigned char> frame, std::span<const unsigned char> reference,
               std::span<unsigned char> out) const;

 private:
  static constexpr std::size_t kLevels = 256;

  int meanOf(unsigned char frame, unsigned char reference) const;

  std::array<int, kLevels> lowest_;  // mean by reference
  std::array<int, kLevels> highest_;
  std::array<int, 2 * kLevels - 1> gained_;  // what a difference adds, from -255 on
};

}  // namespace KPF_TOOL

#endif

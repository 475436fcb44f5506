// One motion amplifier of the library, fed frame by frame.
#ifndef KPF_AMPLIFIER_H
#define KPF_AMPLIFIER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vlm_internal.h"

namespace KPF_TOOL {

/// An amplifier that always has a picture: while its window fills, frame and reference are the
/// frame that was added, so that the output stays in step with the input.
class Amplifier {
 public:
  explicit Amplifier(const VXP_MA_CONFIGURATION& parameters);
  ~Amplifier();
  Amplifier(const Amplifier&) = delete;
  Amplifier& operator=(const Amplifier&) = delete;

  /// What the library divides its sums by.
  int windowSize() const;

  /// The frames that the window takes before the first one is amplified, that one not counted.
  std::uint64_t fillingFrames() const;

  /// @param frame 8-bit samples of the size in the parameters.
  void add(const std::vector<unsigned char>& frame);

  /// Whether the frame that was added last is amplified, or the window still fills.
  bool available() const { return available_; }

  const std::vector<unsigned char>& reference() const { return reference_; }
  const std::vector<unsigned char>& amplified() const { return amplified_; }

 private:
  std::size_t size_;
  unsigned handle_;
  std::vector<unsigned char> reference_;
  std::vector<unsigned char> amplified_;
  bool available_ = false;
};

}  // namespace KPF_TOOL

#endif

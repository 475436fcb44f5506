// What motion amplification can and cannot do with a clip.
#ifndef KPF_MOTION_LIMITS_H
#define KPF_MOTION_LIMITS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KPF_TOOL {

/// Why no frame of a clip would be amplified, and what would help; nothing when there are enough
/// frames.
/// @param needed frames up to the first that is amplified, that one included.
/// @param there frames of the clip.
struct TooFewFrames {
  std::string problem;
  std::string advice;
};
std::optional<TooFewFrames> tooFewFrames(double rate, std::uint64_t needed, std::uint64_t there);

/// Counts the pixels whose difference, multiplied by the gain, is more than a sample holds: they
/// begin again at 0, so that what should be bright is dark.
class Wrapping {
 public:
  explicit Wrapping(double gain);

  /// A frame and the reference that it was amplified against.
  void add(const std::vector<unsigned char>& frame, const std::vector<unsigned char>& reference);

  /// A line for the user when more than one pixel in a hundred wrapped; else empty.
  std::string remark() const;

 private:
  double gain_;
  int smallest_;     // difference that wraps
  int largest_ = 0;  // difference there was
  std::uint64_t wrapped_ = 0;
  std::uint64_t pixels_ = 0;
};

}  // namespace KPF_TOOL

#endif

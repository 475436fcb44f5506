// From values over time to strengths over frequency: all that is asked of kissfft.
#ifndef KPF_TRANSFORM_H
#define KPF_TRANSFORM_H

#include <cstddef>
#include <memory>
#include <span>

namespace KPF_TOOL {

/// Whether the tool was built with kissfft.
bool canTransform();

/// A Fourier transform of one length, prepared once for many uses.
class Transform {
 public:
  /// The shortest length that is fast and holds `count` values.
  static std::size_t lengthFor(std::size_t count);

  /// @param length one that lengthFor gave.
  explicit Transform(std::size_t length);
  ~Transform();
  Transform(const Transform&) = delete;
  Transform& operator=(const Transform&) = delete;

  std::size_t length() const;
  /// What in() holds is transformed.
  std::span<float> in();
  /// Squared magnitudes of length() / 2 + 1 frequencies, from 0 to half a cycle a value; valid
  /// until the next call.
  std::span<const float> powers();

 private:
  class Plan;
  std::unique_ptr<Plan> plan_;
};

}  // namespace KPF_TOOL

#endif

// Which frequencies are worth a map.
#ifndef KPF_CANDIDATES_H
#define KPF_CANDIDATES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/kpf/analysis/picture.h"
#include "tools/kpf/analysis/spectrum.h"
#include "tools/kpf/analysis/stretches.h"
#include "tools/kpf/analysis/transform.h"

namespace KPF_TOOL {

/**
 * Looks at some four thousand pixels spread over the picture, and averages their spectra.
 *
 * The average of so many has next to no scatter, so that a motion in one place of a hundred still
 * stands out of it. Memory depends on neither the picture nor the number of frames.
 */
class Candidates {
 public:
  Candidates(const PictureLayout& layout, const Stretches& stretches, double rate);

  /// The next frames, one behind the other; see FrameBatch.
  void add(const unsigned char* frames, std::size_t count);

  /// The average of the stretches that are complete; empty where there is none.
  Spectrum spectrum() const;
  /// Its strongest frequencies, in hertz, `most` at most.
  std::vector<double> frequencies(std::size_t most) const;

 private:
  void spreadPixels();
  void endStretch();

  PictureLayout layout_;
  Stretches stretches_;
  double rate_;
  std::vector<double> window_;
  Transform transform_;
  std::vector<std::size_t> pixels_;  // their places in the picture
  std::vector<float> levels_;        // of the stretch so far, pixel by pixel
  std::vector<double> powers_;       // summed over pixels and stretches
  std::size_t present_ = 0;          // frames of the stretch so far
  std::uint64_t complete_ = 0;       // stretches
};

}  // namespace KPF_TOOL

#endif

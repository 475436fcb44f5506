// How strongly every pixel swings at a few frequencies.
#ifndef KPF_SWING_MAP_H
#define KPF_SWING_MAP_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/kpf/analysis/picture.h"
#include "tools/kpf/analysis/stretches.h"

namespace KPF_TOOL {

/// A figure for every pixel, row by row.
struct PictureMap {
  unsigned width = 0;
  unsigned height = 0;
  std::vector<float> values;
};

/**
 * Correlates every pixel with each frequency, frame by frame: the frames are read once, and the
 * memory taken depends on the picture and the number of frequencies alone.
 *
 * Each stretch of frames fades in and out, and is free of its mean and its trend, as in spectrumOf.
 */
class SwingMap {
 public:
  /// @param frequencies in hertz, from two cycles a stretch to half of `rate`.
  SwingMap(const PictureLayout& layout, const Stretches& stretches, double rate,
           std::vector<double> frequencies);

  /// The next frames, one behind the other, at most FrameBatch::kFrames; see FrameBatch.
  void add(const unsigned char* frames, std::size_t count);

  /// To either side, in grey levels, at frequency `index`.
  PictureMap amplitudes(std::size_t index) const;

  /// The frequency, in hertz, at which a pixel and those around it swing most; 0 where none of them
  /// is told from noise.
  PictureMap dominant() const;

 private:
  /// What one frequency has to do with the frames of a stretch, and the pixels with it.
  struct Frequency {
    std::vector<float> cosines, sines;   // weights of the frames
    std::vector<float> real, imaginary;  // sums of the stretch so far
    std::vector<float> power;            // of the stretches that are complete
    double noise = 0;                    // power that noise of variance 1 has here
  };

  Frequency prepared(double hertz, double rate) const;
  void accumulate(const unsigned char* frames, std::size_t count);
  void accumulateTile(const unsigned char* frames, std::size_t count, std::size_t first,
                      std::size_t pixels);
  void endStretch();

  PictureLayout layout_;
  Stretches stretches_;
  std::vector<double> hertz_;
  std::vector<double> window_;
  std::vector<Frequency> frequencies_;
  std::vector<unsigned char>
      base_;  // the stretch's first frame, which the others are measured from
  std::vector<float> sums_, squares_;  // of the stretch so far
  std::vector<float> variances_;       // of the stretches that are complete
  std::size_t present_ = 0;            // frames of the stretch so far
  std::uint64_t complete_ = 0;         // stretches
};

}  // namespace KPF_TOOL

#endif

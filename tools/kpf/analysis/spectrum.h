// How strongly something swings, by frequency.
#ifndef KPF_SPECTRUM_H
#define KPF_SPECTRUM_H

#include <cstddef>
#include <vector>

#include "tools/kpf/analysis/waveform.h"

namespace KPF_TOOL {

/// Fewer frames have no spectrum worth the name.
constexpr std::size_t kFewestFrames = 8;

/**
 * Amplitudes by frequency.
 *
 * `amplitudes[k]` belongs to k * binWidth hertz, and is what a steady swing of that frequency has
 * from its middle to either side, in the waveform's unit. The first one, of 0 Hz, is left out and
 * 0.
 */
struct Spectrum {
  double binWidth = 0;    // hertz; finer than the resolution, so that peaks are well drawn
  double resolution = 0;  // hertz: one cycle in all of the frames; peaks stand twice as far apart
  double nyquist = 0;     // hertz: half the frame rate, above which nothing is told apart
  std::vector<double> amplitudes;  // none where there are too few frames

  double frequencyOf(std::size_t bin) const { return static_cast<double>(bin) * binWidth; }
};

/// Mean and trend are taken off first, then the values fade in and out (Hann's window), so that the
/// ends do not look like a jump.
Spectrum spectrumOf(const Waveform& waveform);

/// The window's weights for `count` values, symmetrical, all above 0.
std::vector<double> hannWindow(std::size_t count);

/// Subtracts the straight line that fits best. With the window's weights it bends little to swings,
/// which have no trend but look like it where they are cut off.
void subtractTrend(std::vector<double>& values, const std::vector<double>& window);

}  // namespace KPF_TOOL

#endif

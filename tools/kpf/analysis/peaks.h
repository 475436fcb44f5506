// The frequencies that stand out of a spectrum.
#ifndef KPF_PEAKS_H
#define KPF_PEAKS_H

#include <cstddef>
#include <vector>

#include "tools/kpf/analysis/spectrum.h"

namespace KPF_TOOL {

struct Peak {
  double frequency = 0;  // hertz, interpolated between the bins
  double amplitude = 0;  // to either side, in the waveform's unit
  double overNoise = 0;  // so many times the median of the spectrum
};

/// Slower swings are not told from drift: there must be so many cycles in all.
constexpr double kFewestCycles = 2;

/// A peak of noise alone is as high once in 65,000 bins.
constexpr double kAboveNoise = 4;

/**
 * The peaks, the highest first.
 *
 * Left out is what stands out of the noise less than `aboveNoise` times, what the window makes of
 * a higher peak beside it, and what swings fewer than kFewestCycles times in all.
 *
 * @param most of them at most.
 */
std::vector<Peak> peaksOf(const Spectrum& spectrum, std::size_t most,
                          double aboveNoise = kAboveNoise);

}  // namespace KPF_TOOL

#endif

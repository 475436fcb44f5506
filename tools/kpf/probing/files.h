// The files that a probe leaves.
#ifndef KPF_PROBING_FILES_H
#define KPF_PROBING_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/plots/plot.h"
#include "tools/kpf/probing/measurement.h"

namespace KPF_TOOL {

/// A line a frame: number, seconds from the first, whether it was lost, brightness, displacement in
/// pixels and, where `scale` is given, in millimetres. What an axis does not show is left empty.
/// @param first the number of the first frame.
std::string waveformTable(const Measurement& found, std::uint64_t first,
                          std::optional<double> scale);

/// A line a frequency: hertz, and the amplitudes of brightness and displacement.
std::string spectrumTable(const Measurement& found);

/// Waveform and spectrum of the brightness, and of each axis that shows movement.
std::vector<Plot> plotsOf(const Measurement& found);

/// @throws ToolError, as the following do, when it cannot be written.
void writeText(const Destination& destination, const std::string& text);

/// `.svg`, or anything that openEncodedOutput takes an image for.
void writePlots(const Destination& destination, const std::vector<Plot>& plots);

/**
 * Writes a map by the extension of its name.
 *
 * `.raw`: 32-bit numbers, little-endian, in grey levels or hertz. `.tif`: 16 bits, 256 to a level,
 * or the highest one for half the frame rate. `.png`: 8 bits, to be looked at, the highest value of
 * the map white.
 */
void writeMap(const Destination& destination, const MapResult& found, double rate);

/// Whether writeMap, or writePlots, knows the extension.
bool isMapName(const std::string& name);
bool isPlotName(const std::string& name);

}  // namespace KPF_TOOL

#endif

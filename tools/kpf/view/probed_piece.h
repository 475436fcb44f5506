// The piece of a recording that the page has analysed.
#ifndef KPF_PROBED_PIECE_H
#define KPF_PROBED_PIECE_H

#include <cstddef>
#include <cstdint>

#include "tools/kpf/probing/measurement.h"
#include "tools/kpf/view/exchange.h"
#include "tools/kpf/view/shown_recording.h"

namespace KPF_TOOL {

/// Whether there is anything to analyse: frequencies need a frame rate, and a transform.
bool canAnalyse(const KPF_READER::Header& header);

/**
 * What `kpf probe` would be given: the frames from `from` to `to` of the request, as far as they
 * are there, and no more than take seconds.
 *
 * @param pixels of each frame that are worked on.
 * @throws ToolError where there are too few frames.
 */
Probed probedPiece(const Request& request, ShownRecording& recording, std::size_t pixels);

/// Nobody is told how far it is: the page waits for seconds at most.
inline void noProgress(std::uint64_t) {}

}  // namespace KPF_TOOL

#endif

// The frames of a recording as the analysis takes them.
#ifndef KPF_ANALYSED_FRAMES_H
#define KPF_ANALYSED_FRAMES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/kpf/analysis/picture.h"
#include "tools/kpf/view/exchange.h"
#include "tools/kpf/view/shown_recording.h"

namespace KPF_TOOL {

/// One frame after the other, with all its bits.
class AnalysedFrames {
 public:
  explicit AnalysedFrames(ShownRecording& recording);

  const PictureLayout& layout() const { return layout_; }

  /// @return its bytes, valid until the next call; null where it is lost.
  const unsigned char* at(std::uint32_t place);

 private:
  ShownRecording& recording_;
  PictureLayout layout_;
  ShownFrame frame_;
  std::vector<std::uint16_t> samples_;
  std::vector<unsigned char> bytes_;
};

/// Whether there is anything to analyse: frequencies need a frame rate, and a transform.
bool canAnalyse(const KPF_READER::Header& header);

/// The places that a request wants to be looked at: `from` to `to`, as far as they are there.
struct AnalysedRange {
  /// @param pixels of a frame that are looked at: of many of them fewer frames are taken.
  /// @throws ToolError where there are too few.
  AnalysedRange(const Request& request, ShownRecording& recording, std::size_t pixels);

  std::uint32_t frames() const { return end - first; }

  std::uint32_t first = 0;
  std::uint32_t end = 0;  // one behind the last
};

}  // namespace KPF_TOOL

#endif

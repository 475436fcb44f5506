// What kpf record needs whatever it records: a free name, a video that is open, the header's
// fields.
#ifndef KPF_RECORD_INPUT_H
#define KPF_RECORD_INPUT_H

#include <cstdint>
#include <memory>
#include <string>

#include "tools/kpf/commands/record_options.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/recording/record_report.h"
#include "vlm_internal.h"

namespace KPF_TOOL {

/// What can be found wrong before the input is opened. @return the header file's path.
std::string checkedHeader(const RecordOptions& options);

/// Opens the video. @throws ToolError.
std::unique_ptr<FrameSource> openInput(const RecordOptions& options);

/// Goes on to its first frame. @return false where the user interrupted that.
/// @throws ToolError where there is none.
bool findFirstFrame(FrameSource& input, const RecordOptions& options);

struct Geometry {
  unsigned width;
  unsigned height;
  int bits;  // of a pixel as recorded
};

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationFor(const Geometry& geometry,
                                                        const RecordOptions& options, double rate,
                                                        std::uint64_t frames, RecordReport& report);

}  // namespace KPF_TOOL

#endif

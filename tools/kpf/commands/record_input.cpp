#include "tools/kpf/commands/record_input.h"

#include <fmt/format.h>

#include "format/kpf_layout.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/recording/claim.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/recording/start_time.h"
#include "tools/kpf/recording/target.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

std::string checkedHeader(const RecordOptions& options) {
  std::string header = headerPath(options.output);
  parseStartTime(options.start);
  // Numbered recordings find free names themselves.
  if (options.live.again) return header;
  checkUnclaimed(header);
  checkTarget(header, options.force, filesRead(options.input));
  return header;
}

std::unique_ptr<FrameSource> openInput(const RecordOptions& options) {
  auto input = openMedia(options.input, options.videoBits() == 8 ? Samples::k8Bit : Samples::k16Bit,
                         hintsOf(options));
  if (input->width() > kLongestSide || input->height() > kLongestSide) {
    throw ToolError(Outcome::kWrongUsage, "frames of more than 65535 rows or columns do not fit",
                    "Make the video smaller.");
  }
  return input;
}

bool findFirstFrame(FrameSource& input, const RecordOptions& options) {
  const bool found = input.next();
  if (Interrupt::requested()) return false;
  if (found) return true;
  throw ToolError(Outcome::kUnreadableInput,
                  fmt::format("{} holds no frames", escaped(options.input)),
                  "Give a video that can be decoded.");
}

VLM_INTERNAL::VXP_STREAM_CONFIGURATION configurationFor(const Geometry& geometry,
                                                        const RecordOptions& options, double rate,
                                                        std::uint64_t frames,
                                                        RecordReport& report) {
  const StartTime start = parseStartTime(options.start);
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  configuration.text2 = fitted(options.note, "--note", KPF_FORMAT::HEADER::kText2.size, report);
  configuration.text5 = fitted(options.text, "--text", KPF_FORMAT::HEADER::kText5.size, report);
  if (geometry.bits != 8 && geometry.width % 2 != 0) {
    report.remark(
        fmt::format("the last of {} columns is not recorded: at {} bits two pixels share "
                    "three bytes",
                    geometry.width, geometry.bits));
  }
  configuration.width = geometry.width;
  configuration.height = geometry.height;
  configuration.frameRate = static_cast<int>(rate);
  configuration.bitsPerPixel = geometry.bits;
  configuration.frameCount = static_cast<unsigned>(frames);
  configuration.startSeconds = start.seconds;
  configuration.startMicroseconds = start.microseconds;
  return configuration;
}

}  // namespace KPF_TOOL

// kpf export: a recording becomes a video, images, or raw frames in a pipe.
#ifndef KPF_EXPORT_H
#define KPF_EXPORT_H

#include <cstdint>
#include <optional>
#include <string>

namespace KPF_TOOL {

/// Frames `from` to `to`, both included, counted from 0.
struct FrameRange {
  std::optional<std::uint64_t> from;
  std::optional<std::uint64_t> to;

  std::uint64_t first() const { return from.value_or(0); }
  bool holds(std::uint64_t frame) const { return frame >= first() && (!to || frame <= *to); }
};

struct ExportOptions {
  std::string file;    // header file
  std::string output;  // see openOutput
  FrameRange range;
  bool quiet = false;
};

/// @return 0: every frame is there; 1: cut short; throws ToolError and RecordingError.
int runExport(const ExportOptions& options);

}  // namespace KPF_TOOL

#endif

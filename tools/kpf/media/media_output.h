// Grey frames into a video, a sequence of images, or a pipe.
#ifndef MEDIA_OUTPUT_H
#define MEDIA_OUTPUT_H

#include <cstdint>
#include <memory>
#include <string>

#include "tools/kpf/media/media_input.h"

namespace KPF_TOOL {

/// What the frames are, and from which number images are counted.
struct PictureFormat {
  unsigned width = 0;
  unsigned height = 0;
  Samples samples = Samples::k8Bit;
  double frameRate = 25;
  std::uint64_t firstNumber = 0;
};

class MediaOutput {
 public:
  virtual ~MediaOutput() = default;

  /// @param rows the frame, rows without gaps, in the samples of its format.
  /// @throws ToolError when it cannot be written.
  virtual void add(const unsigned char* rows) = 0;

  /// Completes the file. Without it a video may not play.
  virtual void finish() = 0;
};

/**
 * Opens what the name stands for.
 *
 * `-` raw frames on standard output; `.mkv` lossless (FFV1); `.mp4`, `.mov`, `.avi` for viewing
 * (H.264, or MPEG-4 where FFmpeg has no H.264), from the upper 8 bits; `.png`, `.tif`, `.tiff`
 * lossless images, one or, with a pattern like `frame_%06d.png`, many.
 *
 * @throws ToolError for anything else.
 */
std::unique_ptr<MediaOutput> openOutput(const std::string& name, const PictureFormat& format);

}  // namespace KPF_TOOL

#endif

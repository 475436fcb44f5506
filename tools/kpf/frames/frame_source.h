// Frames for the commands that turn recordings or videos into pictures.
#ifndef FRAME_SOURCE_H
#define FRAME_SOURCE_H

#include <cstdint>
#include <memory>
#include <string>

#include "tools/kpf/media/media_input.h"

namespace KPF_TOOL {

/// Frames one after the other, rows without gaps.
class FrameSource {
 public:
  virtual ~FrameSource() = default;

  virtual unsigned width() const = 0;
  virtual unsigned height() const = 0;
  virtual double frameRate() const = 0;          // 0 when nobody says
  virtual std::uint64_t frameCount() const = 0;  // 0 when nobody knows

  /// Writes the next frame; false at the end.
  virtual bool next(unsigned char* rows) = 0;
  /// Passes over `frames` frames.
  virtual void skip(std::uint64_t frames) = 0;
};

/// A recording, when the name ends in .kpf, else whatever FFmpeg opens. Of 12-bit recordings the
/// 8-bit samples are the high bytes.
std::unique_ptr<FrameSource> openFrames(const std::string& name, Samples samples);

/// Only a recording; its own samples when `samples` fits them, see openFrames.
std::unique_ptr<FrameSource> openRecording(const std::string& name, Samples samples);

/// The samples in which nothing of a recording is lost.
Samples samplesOf(const std::string& recording);

}  // namespace KPF_TOOL

#endif

// Where frames come from.
#ifndef KPF_FRAME_SOURCE_H
#define KPF_FRAME_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/frames/samples.h"

namespace KPF_TOOL {

/// Grey frames, one after the other: a recording, or what FFmpeg decodes. Commands that turn frames
/// into something else know no more about them than this.
class FrameSource {
 public:
  virtual ~FrameSource() = default;

  virtual unsigned width() const = 0;
  virtual unsigned height() const = 0;
  /// The form in which copyTo writes.
  virtual Samples samples() const = 0;
  /// Frames per second; 0 when nobody says.
  virtual double frameRate() const = 0;
  /// 0 when nobody knows before the end is reached.
  virtual std::uint64_t frameCount() const = 0;

  /// Goes on to the next frame, the first one at first; false at the end.
  virtual bool next() = 0;

  /// What a player shows in another way than these frames are, or leaves out, or adds: a line each.
  virtual std::vector<std::string> remarks() const { return {}; }

  /// When the present frame is shown, in seconds from wherever the source counts; nothing where it
  /// does not say.
  virtual std::optional<double> time() const = 0;

  /// Writes the present frame's rows, `stride` bytes apart.
  virtual void copyTo(unsigned char* out, std::size_t stride) = 0;

  /// Passes over `frames` frames, those behind the end included.
  virtual void skip(std::uint64_t frames) = 0;

  /// Goes back to the frame before the present one; false at the first, and in sources that only
  /// go on.
  virtual bool back() { return false; }

  /// Whether the present frame is not what its recorder or encoder saw: it keeps its place, and
  /// some or all of its samples are made up.
  virtual bool lost() const { return false; }

  /// What of the frames so far the source should have had and did not, an end that came early
  /// included, in words for the user; empty when all were as they should be. Frames that were
  /// recorded as lost are no such thing.
  virtual std::string flaw() const { return ""; }

  /// Bytes of a row without padding.
  std::size_t rowSize() const { return width() * bytesOf(samples()); }
  /// Bytes of a frame, its rows without padding.
  std::size_t frameSize() const { return rowSize() * height(); }
};

}  // namespace KPF_TOOL

#endif

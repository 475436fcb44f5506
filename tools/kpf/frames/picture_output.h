// Where frames go to.
#ifndef KPF_PICTURE_OUTPUT_H
#define KPF_PICTURE_OUTPUT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/kpf/frames/samples.h"

namespace KPF_TOOL {

// Frames per second that videos hold and amplifiers go by. Headers of recordings may tell others.
constexpr double kLowestRate = 0.001;
constexpr double kHighestRate = 1000000;

/// Whether `rate` is one of them; NaN is none.
constexpr bool isShowableRate(double rate) { return rate >= kLowestRate && rate <= kHighestRate; }

/// What the frames are, how many will come, and from which number images are counted.
struct PictureFormat {
  unsigned width = 0;
  unsigned height = 0;
  Samples samples = Samples::k8Bit;
  double frameRate = 25;
  std::uint64_t firstNumber = 0;
  std::optional<std::uint64_t> frames;  // nothing where nobody knows
  bool y4m = false;                     // in a pipe: say what the frames are

  /// Bytes of a row without padding.
  std::size_t rowSize() const { return width * bytesOf(samples); }
};

/// A video, images, or a pipe.
class PictureOutput {
 public:
  virtual ~PictureOutput() = default;

  /// @param rows the frame, rows without gaps, in the samples of its format.
  /// @throws ToolError when it cannot be written.
  virtual void add(const unsigned char* rows) = 0;

  /// No picture where there might be one: images have numbers, which go on.
  virtual void pass() {}

  /// Whether the frame rate goes there, too: bare frames and images have none.
  virtual bool tellsRate() const { return false; }

  /// What the user should know of the pictures before they are made; mostly nothing.
  virtual std::string remark() const { return ""; }

  /// Completes the file and gives it its name. Without it a video is not kept; images and raw
  /// frames are, each from the moment it was added. @throws ToolError as add does.
  virtual void finish() = 0;
};

}  // namespace KPF_TOOL

#endif

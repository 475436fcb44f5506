// Grey frames from whatever FFmpeg opens: a video file, an image sequence, a camera, a pipe.
#ifndef MEDIA_INPUT_H
#define MEDIA_INPUT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {

enum class Samples {
  k8Bit,  // a byte a sample
  k16Bit  // two bytes, little-endian, left-justified
};

inline std::size_t bytesOf(Samples samples) { return samples == Samples::k8Bit ? 1 : 2; }

/**
 * The first video stream of an input, frame by frame.
 *
 * Grey sources are taken as they are: shifted to the left where they have more than 8 bits, cut to
 * their upper bits where fewer are wanted. Colour is turned into grey of the full range.
 */
class MediaInput {
 public:
  /// @param name a path, an image pattern like `frame_%04d.png`, `/dev/video0`, or `-`.
  /// @throws ToolError when nothing there is a video.
  MediaInput(const std::string& name, Samples samples);
  ~MediaInput();
  MediaInput(const MediaInput&) = delete;
  MediaInput& operator=(const MediaInput&) = delete;

  /// Cameras and pipes play once, so their frames cannot be counted beforehand.
  static bool playsOnce(const std::string& name);

  unsigned width() const { return width_; }
  unsigned height() const { return height_; }
  Samples samples() const { return samples_; }
  double frameRate() const { return frameRate_; }  // 0 when the source does not say

  /// Decodes the next frame; false at the end.
  bool next();

  /// When the present frame is shown, in seconds from wherever the source counts.
  std::optional<double> time() const;

  /// Writes the present frame's rows, `stride` bytes apart.
  void copyTo(unsigned char* out, std::size_t stride);

 private:
  void openFile();
  void openDecoder();
  bool decode();
  bool readPacket();
  const AVFrame& asGrey();

  std::string name_;
  Samples samples_;
  AVFormatContext* format_ = nullptr;
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;
  FramePtr grey_;
  ScalerPtr scaler_;
  int stream_ = -1;
  unsigned width_ = 0;
  unsigned height_ = 0;
  double frameRate_ = 0;
};

}  // namespace KPF_TOOL

#endif

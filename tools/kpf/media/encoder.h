// Grey frames become packets. For the sources of this folder alone.
#ifndef KPF_ENCODER_H
#define KPF_ENCODER_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/kpf/frames/picture_output.h"
#include "tools/kpf/media/ffmpeg.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {

/// How one kind of file is encoded.
struct Encoding {
  const AVCodec* codec = nullptr;
  AVPixelFormat pixels = AV_PIX_FMT_NONE;
  const char* muxer = nullptr;  // FFmpeg's name for the container; null: images
  bool even = false;            // whether odd sizes are padded to even ones
};

/// What FFmpeg says about a file that it does not write.
ToolError cannotWrite(const std::string& name, int code);

/// An encoder, fed frame by frame.
class Encoder {
 public:
  /// @param name of the file, for errors.
  /// @param flags AV_CODEC_FLAG_... that the container wants.
  /// @throws ToolError, as all of them do.
  Encoder(const std::string& name, const PictureFormat& format, const Encoding& encoding,
          int flags);

  using Take = std::function<void(AVPacket& packet)>;
  /// @param rows as PictureOutput::add takes them.
  /// @param take is given each packet that is ready.
  void encode(const unsigned char* rows, const Take& take);
  /// Gives what is left.
  void finish(const Take& take);

  const AVCodecContext& context() const { return *codec_; }
  /// What the user should know of the pictures; mostly nothing.
  std::string remark() const;

 private:
  void check(int result) const {
    if (result < 0) throw cannotWrite(name_, result);
  }
  void openCodec(const Encoding& encoding, int flags);
  void openFrame();
  const unsigned char* padded(const unsigned char* rows);
  void givePackets(const Take& take);

  std::string name_;
  PictureFormat format_;
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;
  ScalerPtr scaler_;
  std::vector<unsigned char> padded_;  // the frame in its even size; empty where that is its own
  std::int64_t count_ = 0;             // frames encoded so far
};

}  // namespace KPF_TOOL

#endif

// FFmpeg's objects under owning pointers. For the sources of this folder alone.
#ifndef KPF_FFMPEG_H
#define KPF_FFMPEG_H

extern "C" {
#ifdef KPF_OPENS_CAMERAS
#include <libavdevice/avdevice.h>
#endif
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace KPF_TOOL {

/// Each of them has a function of its own that frees it, and forgets the pointer.
struct FreeFFmpeg {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

using FramePtr = std::unique_ptr<AVFrame, FreeFFmpeg>;
using PacketPtr = std::unique_ptr<AVPacket, FreeFFmpeg>;
using CodecPtr = std::unique_ptr<AVCodecContext, FreeFFmpeg>;
using ScalerPtr = std::unique_ptr<SwsContext, FreeFFmpeg>;

/// A file that is read.
struct CloseInput {
  void operator()(AVFormatContext* file) const { avformat_close_input(&file); }
};
using InputPtr = std::unique_ptr<AVFormatContext, CloseInput>;

/// A file that is written. Closed like this it lacks its end: that is for errors.
struct CloseOutput {
  void operator()(AVFormatContext* file) const {
    if (file->pb != nullptr) avio_closep(&file->pb);
    avformat_free_context(file);
  }
};
using OutputPtr = std::unique_ptr<AVFormatContext, CloseOutput>;

/// FFmpeg's words for one of its error codes.
inline std::string ffmpegError(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE] = "";
  return av_strerror(code, text, sizeof text) == 0 ? text : "unknown error";
}

}  // namespace KPF_TOOL

#endif

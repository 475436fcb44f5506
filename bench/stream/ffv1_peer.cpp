extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "bench/stream/peers.h"

namespace BENCH {
namespace {

constexpr AVRational kTimeBase{1, 30};

struct Free {
  void operator()(AVCodecContext* encoder) const { avcodec_free_context(&encoder); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(AVFormatContext* output) const {
    avio_closep(&output->pb);
    avformat_free_context(output);
  }
};
using Encoder = std::unique_ptr<AVCodecContext, Free>;
using Output = std::unique_ptr<AVFormatContext, Free>;

Encoder openEncoder(FrameSize size) {
  const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_FFV1);
  require(codec != nullptr, "FFV1 encoder");
  Encoder encoder(avcodec_alloc_context3(codec));
  encoder->width = static_cast<int>(size.width);
  encoder->height = static_cast<int>(size.height);
  encoder->pix_fmt = AV_PIX_FMT_GRAY12LE;
  encoder->time_base = kTimeBase;
  encoder->level = 3;
  encoder->thread_count = 1;
  require(avcodec_open2(encoder.get(), codec, nullptr) >= 0, "avcodec_open2");
  return encoder;
}

Output openOutput(const std::string& file, const AVCodecContext& encoder) {
  AVFormatContext* output = nullptr;
  require(avformat_alloc_output_context2(&output, nullptr, "matroska", file.c_str()) >= 0,
          "avformat_alloc_output_context2");
  Output owner(output);
  AVStream* const stream = avformat_new_stream(output, nullptr);
  stream->time_base = kTimeBase;
  avcodec_parameters_from_context(stream->codecpar, &encoder);
  require(avio_open(&output->pb, file.c_str(), AVIO_FLAG_WRITE) >= 0, "avio_open");
  require(avformat_write_header(output, nullptr) >= 0, "avformat_write_header");
  return owner;
}

/// Null ends the video: what the encoder still holds comes out.
void encode(AVCodecContext& encoder, const AVFrame* frame, AVFormatContext& output) {
  const std::unique_ptr<AVPacket, Free> packet(av_packet_alloc());
  require(avcodec_send_frame(&encoder, frame) >= 0, "avcodec_send_frame");
  while (avcodec_receive_packet(&encoder, packet.get()) == 0) {
    av_packet_rescale_ts(packet.get(), kTimeBase, output.streams[0]->time_base);
    require(av_write_frame(&output, packet.get()) >= 0, "av_write_frame");
  }
}

void copyInto(AVFrame& frame, const Frame& samples) {
  require(av_frame_make_writable(&frame) >= 0, "av_frame_make_writable");
  for (int row = 0; row < frame.height; ++row) {
    std::copy_n(samples.data() + row * frame.width, frame.width,
                reinterpret_cast<std::uint16_t*>(frame.data[0] + row * frame.linesize[0]));
  }
}

}  // namespace

void recordFfv1(const std::string& file, const Video& video) {
  const Encoder encoder = openEncoder(video.size);
  const Output output = openOutput(file, *encoder);
  const std::unique_ptr<AVFrame, Free> frame(av_frame_alloc());
  frame->format = encoder->pix_fmt;
  frame->width = encoder->width;
  frame->height = encoder->height;
  require(av_frame_get_buffer(frame.get(), 0) >= 0, "av_frame_get_buffer");
  for (std::size_t i = 0; i < video.frames.size(); ++i) {
    copyInto(*frame, video.frames[i]);
    frame->pts = static_cast<std::int64_t>(i);
    encode(*encoder, frame.get(), *output);
  }
  encode(*encoder, nullptr, *output);
  require(av_write_trailer(output.get()) >= 0, "av_write_trailer");
}

}  // namespace BENCH

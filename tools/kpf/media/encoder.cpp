#include "tools/kpf/media/encoder.h"

#include <fmt/format.h>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {

ToolError cannotWrite(const std::string& name, int code) {
  return {Outcome::kWriteFailed,
          fmt::format("cannot write {}: {}", escaped(name), ffmpegError(code)),
          "Check that the folder is there, that you may write to it, and that the disk has room."};
}

Encoder::Encoder(const std::string& name, const PictureFormat& format, const Encoding& encoding,
                 int flags)
    : name_(name),
      format_(format),
      codec_(avcodec_alloc_context3(encoding.codec)),
      packet_(av_packet_alloc()),
      frame_(av_frame_alloc()) {
  openCodec(encoding, flags);
  openFrame();
}

void Encoder::openCodec(const Encoding& encoding, int flags) {
  codec_->width = static_cast<int>(format_.width);
  codec_->height = static_cast<int>(format_.height);
  codec_->pix_fmt = encoding.pixels;
  codec_->framerate = av_d2q(format_.frameRate, 1000000);
  codec_->time_base = av_inv_q(codec_->framerate);
  codec_->flags |= flags;
  // Version 3 of FFV1 has checksums, so that damage is noticed.
  if (encoding.codec->id == AV_CODEC_ID_FFV1) codec_->level = 3;
  if (encoding.codec->id == AV_CODEC_ID_H264) {
    av_opt_set(codec_->priv_data, "crf", "18", 0);
    av_opt_set(codec_->priv_data, "preset", "veryfast", 0);
  }
  if (encoding.codec->id == AV_CODEC_ID_MPEG4) codec_->global_quality = 2 * FF_QP2LAMBDA;
  check(avcodec_open2(codec_.get(), encoding.codec, nullptr));
}

void Encoder::openFrame() {
  frame_->format = codec_->pix_fmt;
  frame_->width = codec_->width;
  frame_->height = codec_->height;
  check(av_frame_get_buffer(frame_.get(), 0));
  const AVPixelFormat from =
      format_.samples == Samples::k8Bit ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_GRAY16LE;
  scaler_.reset(sws_getContext(frame_->width, frame_->height, from, frame_->width, frame_->height,
                               codec_->pix_fmt, SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr,
                               nullptr));
  if (!scaler_) throw cannotWrite(name_, AVERROR(EINVAL));
}

void Encoder::encode(const unsigned char* rows, const Take& take) {
  // The encoder may still look at the frame before.
  check(av_frame_make_writable(frame_.get()));
  const std::uint8_t* const planes[] = {rows};
  const int strides[] = {static_cast<int>(format_.rowSize())};
  sws_scale(scaler_.get(), planes, strides, 0, frame_->height, frame_->data, frame_->linesize);
  frame_->pts = count_++;
  check(avcodec_send_frame(codec_.get(), frame_.get()));
  givePackets(take);
}

void Encoder::finish(const Take& take) {
  check(avcodec_send_frame(codec_.get(), nullptr));
  givePackets(take);
}

void Encoder::givePackets(const Take& take) {
  int result = 0;
  while ((result = avcodec_receive_packet(codec_.get(), packet_.get())) == 0) {
    take(*packet_);
    av_packet_unref(packet_.get());
  }
  if (result != AVERROR(EAGAIN) && result != AVERROR_EOF) throw cannotWrite(name_, result);
}

}  // namespace KPF_TOOL

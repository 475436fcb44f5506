#include "tools/kpf/media/encoder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {

namespace {

constexpr int kSmallestOfSlices = 3;  // pixels a side
constexpr int kMostOfSystem = 4095;   // error numbers; FFmpeg's own lie far beyond

}  // namespace

ToolError cannotWrite(const std::string& name, int code) {
  if (-code <= kMostOfSystem && code != AVERROR(EINVAL))
    return cannotWriteFile(name, AVUNERROR(code));
  return {Outcome::kWriteFailed,
          fmt::format("cannot write {}: FFmpeg says: {}", escaped(name), ffmpegError(code)),
          "Not every kind of file takes every size and rate: choose another extension."};
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
  const unsigned odd = encoding.even ? 1 : 0;
  codec_->width = static_cast<int>(format_.width + (format_.width & odd));
  codec_->height = static_cast<int>(format_.height + (format_.height & odd));
  codec_->pix_fmt = encoding.pixels;
  codec_->framerate = av_d2q(format_.frameRate, 1000000);
  codec_->time_base = av_inv_q(codec_->framerate);
  codec_->flags |= flags;
  // Version 3 of FFV1 has checksums, so that damage is noticed. Sides of one or two pixels it cuts
  // into slices some of which it forgets.
  const bool tiny = std::min(codec_->width, codec_->height) < kSmallestOfSlices;
  if (encoding.codec->id == AV_CODEC_ID_FFV1) codec_->level = tiny ? 1 : 3;
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
  if (remark().empty()) return;
  padded_.resize(static_cast<std::size_t>(codec_->width) * bytesOf(format_.samples) *
                 static_cast<std::size_t>(codec_->height));
}

std::string Encoder::remark() const {
  const auto width = static_cast<unsigned>(codec_->width);
  const auto height = static_cast<unsigned>(codec_->height);
  if (width == format_.width && height == format_.height) return "";
  return fmt::format("frames of {} x {} pixels are padded to {} x {}, which players show",
                     format_.width, format_.height, width, height);
}

/// The last column and the last row again: black would show as an edge.
const unsigned char* Encoder::padded(const unsigned char* rows) {
  if (padded_.empty()) return rows;
  const std::size_t sample = bytesOf(format_.samples);
  const std::size_t stride = static_cast<std::size_t>(codec_->width) * sample;
  for (unsigned y = 0; y < static_cast<unsigned>(codec_->height); ++y) {
    const unsigned char* const row = rows + std::min(y, format_.height - 1) * format_.rowSize();
    unsigned char* const out = padded_.data() + y * stride;
    std::copy_n(row, format_.rowSize(), out);
    std::copy_n(row + format_.rowSize() - sample, stride - format_.rowSize(),
                out + format_.rowSize());
  }
  return padded_.data();
}

void Encoder::encode(const unsigned char* rows, const Take& take) {
  // The encoder may still look at the frame before.
  check(av_frame_make_writable(frame_.get()));
  const std::uint8_t* const planes[] = {padded(rows)};
  const int strides[] = {codec_->width * static_cast<int>(bytesOf(format_.samples))};
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

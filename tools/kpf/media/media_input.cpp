#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/kpf/media/ffmpeg.h"
#include "tools/kpf/media/grey_row.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr const char* kAdvice =
    "Give a video file, an image pattern (frame_%04d.png), a camera (/dev/video0) or - .";

/// Bits of a grey sample in native byte order, or 0 for any other format.
int greyBits(int format) {
  switch (format) {
    case AV_PIX_FMT_GRAY8:
      return 8;
    case AV_PIX_FMT_GRAY10LE:
      return 10;
    case AV_PIX_FMT_GRAY12LE:
      return 12;
    case AV_PIX_FMT_GRAY14LE:
      return 14;
    case AV_PIX_FMT_GRAY16LE:
      return 16;
    default:
      return 0;
  }
}

#ifdef KPF_OPENS_CAMERAS
const AVInputFormat* cameraFormat(const std::string&) {
  avdevice_register_all();
  return av_find_input_format("v4l2");
}
#else
const AVInputFormat* cameraFormat(const std::string& name) {
  throw ToolError(Outcome::kUnreadableInput,
                  fmt::format("cannot open {}: this kpf was built without cameras", name),
                  "Install libavdevice-dev, and build it again.");
}
#endif

/// The first video stream of an input, decoded frame by frame.
class MediaInput : public FrameSource {
 public:
  MediaInput(const std::string& name, Samples samples);

  unsigned width() const override { return width_; }
  unsigned height() const override { return height_; }
  Samples samples() const override { return samples_; }
  double frameRate() const override { return frameRate_; }
  /// What containers say about it is no more than a guess.
  std::uint64_t frameCount() const override { return 0; }

  bool next() override;
  std::optional<double> time() const override;
  void copyTo(unsigned char* out, std::size_t stride) override;
  void skip(std::uint64_t frames) override;

 private:
  void openFile();
  void openDecoder();
  bool decode();
  bool readPacket();
  const AVFrame& asGrey();
  void openScaler(AVPixelFormat wanted);

  std::string name_;
  Samples samples_;
  InputPtr format_;
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;    // as it was decoded
  FramePtr grey_;     // the same, where it had to be turned into grey
  ScalerPtr scaler_;  // made for the first frame that is not grey
  int stream_ = -1;   // of the container's streams, the one that is decoded
  unsigned width_ = 0;
  unsigned height_ = 0;
  double frameRate_ = 0;
};

MediaInput::MediaInput(const std::string& name, Samples samples)
    : name_(name),
      samples_(samples),
      packet_(av_packet_alloc()),
      frame_(av_frame_alloc()),
      grey_(av_frame_alloc()) {
  av_log_set_level(AV_LOG_FATAL);
  openFile();
  openDecoder();
}

void MediaInput::openFile() {
  const AVInputFormat* const device =
      name_.starts_with("/dev/video") ? cameraFormat(name_) : nullptr;
  const std::string url = name_ == "-" ? "pipe:0" : name_;
  AVFormatContext* format = avformat_alloc_context();
  // A wait for a camera or a pipe ends when the user wants to stop.
  format->interrupt_callback.callback = [](void*) { return Interrupt::requested() ? 1 : 0; };
  // On failure it frees what it was given.
  const int result = avformat_open_input(&format, url.c_str(), device, nullptr);
  if (result < 0) {
    throw ToolError(Outcome::kUnreadableInput,
                    fmt::format("cannot open {}: {}", name_, ffmpegError(result)), kAdvice);
  }
  format_.reset(format);
}

void MediaInput::openDecoder() {
  const AVCodec* decoder = nullptr;
  if (avformat_find_stream_info(format_.get(), nullptr) >= 0) {
    stream_ = av_find_best_stream(format_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
  }
  if (stream_ < 0 || decoder == nullptr) {
    throw ToolError(Outcome::kUnreadableInput, fmt::format("{} holds no video", name_), kAdvice);
  }
  const AVStream& stream = *format_->streams[stream_];
  codec_.reset(avcodec_alloc_context3(decoder));
  avcodec_parameters_to_context(codec_.get(), stream.codecpar);
  codec_->thread_count = 0;  // as many as there are cores
  const int result = avcodec_open2(codec_.get(), decoder, nullptr);
  if (result < 0 || codec_->width <= 0 || codec_->height <= 0) {
    throw ToolError(Outcome::kUnreadableInput,
                    fmt::format("cannot decode {}: {}", name_, ffmpegError(result)), kAdvice);
  }
  width_ = static_cast<unsigned>(codec_->width);
  height_ = static_cast<unsigned>(codec_->height);
  const AVRational rate = av_guess_frame_rate(format_.get(), format_->streams[stream_], nullptr);
  if (rate.num > 0 && rate.den > 0) frameRate_ = av_q2d(rate);
}

bool MediaInput::next() {
  if (!decode()) return false;
  if (frame_->width != codec_->width || static_cast<unsigned>(frame_->width) != width_ ||
      static_cast<unsigned>(frame_->height) != height_) {
    throw ToolError(Outcome::kCutShort,
                    fmt::format("{} changes its size from {} x {} to {} x {} pixels", name_, width_,
                                height_, frame_->width, frame_->height),
                    "Cut the source where its size changes, and record the pieces.");
  }
  return true;
}

bool MediaInput::decode() {
  for (;;) {
    const int result = avcodec_receive_frame(codec_.get(), frame_.get());
    if (result == 0) return true;
    if (result != AVERROR(EAGAIN)) return false;
    // After the last packet the decoder gives what it still holds back.
    if (readPacket()) {
      avcodec_send_packet(codec_.get(), packet_.get());
      av_packet_unref(packet_.get());
    } else {
      avcodec_send_packet(codec_.get(), nullptr);
    }
  }
}

bool MediaInput::readPacket() {
  while (av_read_frame(format_.get(), packet_.get()) >= 0) {
    if (packet_->stream_index == stream_) return true;
    av_packet_unref(packet_.get());
  }
  return false;
}

std::optional<double> MediaInput::time() const {
  if (frame_->best_effort_timestamp == AV_NOPTS_VALUE) return std::nullopt;
  return static_cast<double>(frame_->best_effort_timestamp) *
         av_q2d(format_->streams[stream_]->time_base);
}

void MediaInput::skip(std::uint64_t frames) {
  // By decoding: containers do not find the frame of a number reliably.
  while (frames > 0 && next()) --frames;
}

void MediaInput::copyTo(unsigned char* out, std::size_t stride) {
  const AVFrame& frame = asGrey();
  const int bits = greyBits(frame.format);
  for (unsigned y = 0; y < height_; ++y) {
    const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(y) * frame.linesize[0];
    copyGreyRow(frame.data[0] + row, bits, out + y * stride, samples_, width_);
  }
}

const AVFrame& MediaInput::asGrey() {
  if (greyBits(frame_->format) != 0) return *frame_;
  if (!scaler_) openScaler(samples_ == Samples::k8Bit ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_GRAY16LE);
  sws_scale(scaler_.get(), frame_->data, frame_->linesize, 0, frame_->height, grey_->data,
            grey_->linesize);
  return *grey_;
}

void MediaInput::openScaler(AVPixelFormat wanted) {
  scaler_.reset(sws_getContext(
      frame_->width, frame_->height, static_cast<AVPixelFormat>(frame_->format), frame_->width,
      frame_->height, wanted, SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
  grey_->format = wanted;
  grey_->width = frame_->width;
  grey_->height = frame_->height;
  if (!scaler_ || av_frame_get_buffer(grey_.get(), 0) < 0) {
    throw ToolError(Outcome::kUnreadableInput, fmt::format("cannot turn {} into grey", name_),
                    kAdvice);
  }
}

}  // namespace

std::unique_ptr<FrameSource> openMedia(const std::string& name, Samples samples) {
  return std::make_unique<MediaInput>(name, samples);
}

}  // namespace KPF_TOOL

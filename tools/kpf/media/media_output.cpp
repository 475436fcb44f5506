#include "tools/kpf/media/media_output.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr const char* kAdvice =
    "Give a name in .mkv (lossless), .mp4, .png, .tif (with %06d for more than one), or - .";

ToolError cannotWrite(const std::string& name, int code) {
  return {kProblems, fmt::format("cannot write {}: {}", name, ffmpegError(code)),
          "Check that the folder is there, that you may write to it, and that the disk has room."};
}

class RawOutput : public MediaOutput {
 public:
  explicit RawOutput(const PictureFormat& format)
      : size_(std::size_t{format.width} * format.height * bytesOf(format.samples)),
        file_(fdopen(dup(STDOUT_FILENO), "wb")) {}
  ~RawOutput() override {
    if (file_ != nullptr) std::fclose(file_);
  }
  RawOutput(const RawOutput&) = delete;
  RawOutput& operator=(const RawOutput&) = delete;

  void add(const unsigned char* rows) override {
    if (file_ == nullptr || std::fwrite(rows, 1, size_, file_) != size_) fail();
  }
  void finish() override {
    if (std::fflush(file_) != 0) fail();
  }

 private:
  [[noreturn]] static void fail() {
    throw ToolError(kProblems, "cannot write to standard output", "Check what reads the pipe.");
  }

  std::size_t size_;
  std::FILE* file_;
};

/// How one kind of file is encoded.
struct Encoding {
  const AVCodec* codec = nullptr;
  AVPixelFormat pixels = AV_PIX_FMT_NONE;
  bool images = false;
};

AVPixelFormat viewingFormat(const PictureFormat& format) {
  const bool even = format.width % 2 == 0 && format.height % 2 == 0;
  return even ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV444P;
}

Encoding encodingFor(const std::string& name, const PictureFormat& format) {
  const std::string extension = std::filesystem::path(name).extension().string();
  const bool deep = format.samples == Samples::k16Bit;
  const auto find = [](AVCodecID id) { return avcodec_find_encoder(id); };
  if (extension == ".mkv") {
    return {find(AV_CODEC_ID_FFV1), deep ? AV_PIX_FMT_GRAY16LE : AV_PIX_FMT_GRAY8};
  }
  if (extension == ".png") {
    return {find(AV_CODEC_ID_PNG), deep ? AV_PIX_FMT_GRAY16BE : AV_PIX_FMT_GRAY8, true};
  }
  if (extension == ".tif" || extension == ".tiff") {
    return {find(AV_CODEC_ID_TIFF), deep ? AV_PIX_FMT_GRAY16LE : AV_PIX_FMT_GRAY8, true};
  }
  if (extension == ".mp4" || extension == ".mov" || extension == ".avi") {
    const AVCodec* h264 = avcodec_find_encoder_by_name("libx264");
    if (h264 != nullptr) return {h264, viewingFormat(format)};
    return {find(AV_CODEC_ID_MPEG4), AV_PIX_FMT_YUV420P};
  }
  throw ToolError(kWrongOrUnreadable, fmt::format("{} has no extension that is known", name),
                  kAdvice);
}

class EncodedOutput : public MediaOutput {
 public:
  EncodedOutput(const std::string& name, const PictureFormat& format)
      : name_(name),
        format_(format),
        encoding_(encodingFor(name, format)),
        packet_(av_packet_alloc()),
        frame_(av_frame_alloc()) {
    av_log_set_level(AV_LOG_FATAL);
    openCodec();
    openFile();
    openFrame();
  }

  ~EncodedOutput() override {
    if (file_ == nullptr) return;
    if (file_->pb != nullptr && !(file_->oformat->flags & AVFMT_NOFILE)) avio_closep(&file_->pb);
    avformat_free_context(file_);
  }
  EncodedOutput(const EncodedOutput&) = delete;
  EncodedOutput& operator=(const EncodedOutput&) = delete;

  void add(const unsigned char* rows) override {
    check(av_frame_make_writable(frame_.get()));
    const std::uint8_t* const planes[] = {rows};
    const int strides[] = {static_cast<int>(format_.width * bytesOf(format_.samples))};
    sws_scale(scaler_.get(), planes, strides, 0, frame_->height, frame_->data, frame_->linesize);
    frame_->pts = count_++;
    check(avcodec_send_frame(codec_.get(), frame_.get()));
    writePackets();
  }

  void finish() override {
    check(avcodec_send_frame(codec_.get(), nullptr));
    writePackets();
    check(av_write_trailer(file_));
    if (file_->pb != nullptr && !(file_->oformat->flags & AVFMT_NOFILE)) {
      check(avio_closep(&file_->pb));
    }
  }

 private:
  void check(int result) const {
    if (result < 0) throw cannotWrite(name_, result);
  }

  void openCodec() {
    if (encoding_.codec == nullptr) {
      throw ToolError(kWrongOrUnreadable, fmt::format("this FFmpeg has no encoder for {}", name_),
                      kAdvice);
    }
    codec_.reset(avcodec_alloc_context3(encoding_.codec));
    codec_->width = static_cast<int>(format_.width);
    codec_->height = static_cast<int>(format_.height);
    codec_->pix_fmt = encoding_.pixels;
    codec_->framerate = av_d2q(format_.frameRate, 1000000);
    codec_->time_base = av_inv_q(codec_->framerate);
    if (encoding_.codec->id == AV_CODEC_ID_FFV1) codec_->level = 3;
    if (encoding_.codec->id == AV_CODEC_ID_H264) {
      av_opt_set(codec_->priv_data, "crf", "18", 0);
      av_opt_set(codec_->priv_data, "preset", "veryfast", 0);
    }
    if (encoding_.codec->id == AV_CODEC_ID_MPEG4) codec_->global_quality = 2 * FF_QP2LAMBDA;
  }

  void openFile() {
    const char* const muxer = encoding_.images ? "image2" : nullptr;
    check(avformat_alloc_output_context2(&file_, nullptr, muxer, name_.c_str()));
    if (file_->oformat->flags & AVFMT_GLOBALHEADER) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    check(avcodec_open2(codec_.get(), encoding_.codec, nullptr));
    stream_ = avformat_new_stream(file_, nullptr);
    stream_->time_base = codec_->time_base;
    stream_->avg_frame_rate = codec_->framerate;
    check(avcodec_parameters_from_context(stream_->codecpar, codec_.get()));
    if (!(file_->oformat->flags & AVFMT_NOFILE)) {
      check(avio_open(&file_->pb, name_.c_str(), AVIO_FLAG_WRITE));
    }
    AVDictionary* options = nullptr;
    if (encoding_.images) {
      const bool one = name_.find('%') == std::string::npos;
      av_dict_set(&options, "update", one ? "1" : "0", 0);
      av_dict_set_int(&options, "start_number", static_cast<std::int64_t>(format_.firstNumber), 0);
    }
    const int result = avformat_write_header(file_, &options);
    av_dict_free(&options);
    check(result);
  }

  void openFrame() {
    frame_->format = encoding_.pixels;
    frame_->width = codec_->width;
    frame_->height = codec_->height;
    check(av_frame_get_buffer(frame_.get(), 0));
    const AVPixelFormat from =
        format_.samples == Samples::k8Bit ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_GRAY16LE;
    scaler_.reset(sws_getContext(frame_->width, frame_->height, from, frame_->width, frame_->height,
                                 encoding_.pixels, SWS_BICUBIC | SWS_ACCURATE_RND, nullptr, nullptr,
                                 nullptr));
    if (!scaler_) throw cannotWrite(name_, AVERROR(EINVAL));
  }

  void writePackets() {
    while (avcodec_receive_packet(codec_.get(), packet_.get()) == 0) {
      av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
      packet_->duration = av_rescale_q(1, codec_->time_base, stream_->time_base);
      packet_->stream_index = 0;
      check(av_interleaved_write_frame(file_, packet_.get()));
    }
  }

  std::string name_;
  PictureFormat format_;
  Encoding encoding_;
  AVFormatContext* file_ = nullptr;
  AVStream* stream_ = nullptr;
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;
  ScalerPtr scaler_;
  std::int64_t count_ = 0;
};

}  // namespace

std::unique_ptr<MediaOutput> openOutput(const std::string& name, const PictureFormat& format) {
  if (name == "-") return std::make_unique<RawOutput>(format);
  return std::make_unique<EncodedOutput>(name, format);
}

}  // namespace KPF_TOOL

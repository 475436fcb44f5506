#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "tools/kpf/media/ffmpeg.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr const char* kAdvice =
    "Give a name in .mkv (lossless), .mp4, .png, .tif (with %06d for more than one), or - .";

ToolError cannotWrite(const std::string& name, int code) {
  return {Outcome::kWriteFailed, fmt::format("cannot write {}: {}", name, ffmpegError(code)),
          "Check that the folder is there, that you may write to it, and that the disk has room."};
}

/// How one kind of file is encoded.
struct Encoding {
  const AVCodec* codec = nullptr;
  AVPixelFormat pixels = AV_PIX_FMT_NONE;
  bool images = false;
};

/// Most players want colour at half the resolution, which odd sizes do not have.
AVPixelFormat viewingFormat(const PictureFormat& format) {
  const bool even = format.width % 2 == 0 && format.height % 2 == 0;
  return even ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_YUV444P;
}

/// Lossless where the samples are to come back: see openEncodedOutput. @throws ToolError.
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
  throw ToolError(Outcome::kWrongUsage, fmt::format("{} has no extension that is known", name),
                  kAdvice);
}

/// Encoder and file, opened together and fed frame by frame.
class EncodedOutput : public PictureOutput {
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

  void add(const unsigned char* rows) override {
    // The encoder may still look at the frame before.
    check(av_frame_make_writable(frame_.get()));
    const std::uint8_t* const planes[] = {rows};
    const int strides[] = {static_cast<int>(format_.rowSize())};
    sws_scale(scaler_.get(), planes, strides, 0, frame_->height, frame_->data, frame_->linesize);
    frame_->pts = count_++;
    check(avcodec_send_frame(codec_.get(), frame_.get()));
    writePackets();
  }

  void finish() override {
    check(avcodec_send_frame(codec_.get(), nullptr));
    writePackets();
    check(av_write_trailer(file_.get()));
    // Here, not in the destructor: a disk may refuse the last bytes when the file is closed.
    if (isOpen(*file_)) check(avio_closep(&file_->pb));
  }

 private:
  void check(int result) const {
    if (result < 0) throw cannotWrite(name_, result);
  }

  void openCodec() {
    if (encoding_.codec == nullptr) {
      throw ToolError(Outcome::kWrongUsage, fmt::format("this FFmpeg has no encoder for {}", name_),
                      kAdvice);
    }
    codec_.reset(avcodec_alloc_context3(encoding_.codec));
    codec_->width = static_cast<int>(format_.width);
    codec_->height = static_cast<int>(format_.height);
    codec_->pix_fmt = encoding_.pixels;
    codec_->framerate = av_d2q(format_.frameRate, 1000000);
    codec_->time_base = av_inv_q(codec_->framerate);
    // Version 3 of FFV1 has checksums, so that damage is noticed.
    if (encoding_.codec->id == AV_CODEC_ID_FFV1) codec_->level = 3;
    if (encoding_.codec->id == AV_CODEC_ID_H264) {
      av_opt_set(codec_->priv_data, "crf", "18", 0);
      av_opt_set(codec_->priv_data, "preset", "veryfast", 0);
    }
    if (encoding_.codec->id == AV_CODEC_ID_MPEG4) codec_->global_quality = 2 * FF_QP2LAMBDA;
  }

  void openFile() {
    const char* const muxer = encoding_.images ? "image2" : nullptr;
    AVFormatContext* file = nullptr;
    check(avformat_alloc_output_context2(&file, nullptr, muxer, name_.c_str()));
    file_.reset(file);
    if (file_->oformat->flags & AVFMT_GLOBALHEADER) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    check(avcodec_open2(codec_.get(), encoding_.codec, nullptr));
    stream_ = avformat_new_stream(file_.get(), nullptr);
    stream_->time_base = codec_->time_base;
    stream_->avg_frame_rate = codec_->framerate;
    check(avcodec_parameters_from_context(stream_->codecpar, codec_.get()));
    if (!(file_->oformat->flags & AVFMT_NOFILE)) {
      check(avio_open(&file_->pb, name_.c_str(), AVIO_FLAG_WRITE));
    }
    writeHeader();
  }

  void writeHeader() {
    AVDictionary* options = nullptr;
    if (encoding_.images) {
      const bool one = name_.find('%') == std::string::npos;
      av_dict_set(&options, "update", one ? "1" : "0", 0);
      av_dict_set_int(&options, "start_number", static_cast<std::int64_t>(format_.firstNumber), 0);
    }
    const int result = avformat_write_header(file_.get(), &options);
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
      // Containers count time in units of their own, which is how long a frame is shown.
      av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
      packet_->duration = av_rescale_q(1, codec_->time_base, stream_->time_base);
      packet_->stream_index = 0;
      check(av_interleaved_write_frame(file_.get(), packet_.get()));
    }
  }

  std::string name_;
  PictureFormat format_;
  Encoding encoding_;
  OutputPtr file_;
  AVStream* stream_ = nullptr;  // the file's only one, and the file's own
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;
  ScalerPtr scaler_;
  std::int64_t count_ = 0;  // frames added so far
};

}  // namespace

std::unique_ptr<PictureOutput> openEncodedOutput(const std::string& name,
                                                 const PictureFormat& format) {
  return std::make_unique<EncodedOutput>(name, format);
}

}  // namespace KPF_TOOL

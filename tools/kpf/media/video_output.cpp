#include "tools/kpf/media/video_output.h"

#include <memory>
#include <string>

namespace KPF_TOOL {
namespace {

OutputPtr newContainer(const Destination& destination, const Encoding& encoding) {
  AVFormatContext* file = nullptr;
  const int result = avformat_alloc_output_context2(&file, nullptr, encoding.muxer, nullptr);
  if (result < 0) throw cannotWrite(destination.name, result);
  return OutputPtr(file);
}

/// Encoder and container.
class VideoOutput : public PictureOutput {
 public:
  VideoOutput(const Destination& destination, const PictureFormat& format, const Encoding& encoding)
      : destination_(destination),
        newFile_(destination_.name, destination_),
        container_(newContainer(destination_, encoding)),
        encoder_(
            destination_.name, format, encoding,
            container_->oformat->flags & AVFMT_GLOBALHEADER ? AV_CODEC_FLAG_GLOBAL_HEADER : 0) {
    addStream();
    // A name with a colon would be taken for a protocol.
    check(avio_open(&container_->pb, ("file:" + newFile_.path()).c_str(), AVIO_FLAG_WRITE));
    check(avformat_write_header(container_.get(), nullptr));
  }

  void add(const unsigned char* rows) override {
    encoder_.encode(rows, [this](AVPacket& packet) { write(packet); });
  }

  bool tellsRate() const override { return true; }

  std::string remark() const override { return encoder_.remark(); }

  void finish() override {
    encoder_.finish([this](AVPacket& packet) { write(packet); });
    check(av_write_trailer(container_.get()));
    // Here, not in the destructor: a disk may refuse the last bytes when the file is closed.
    check(avio_closep(&container_->pb));
    newFile_.commit();
  }

 private:
  void check(int result) const {
    if (result < 0) throw cannotWrite(destination_.name, result);
  }

  void addStream() {
    const AVCodecContext& codec = encoder_.context();
    stream_ = avformat_new_stream(container_.get(), nullptr);
    stream_->time_base = codec.time_base;
    stream_->avg_frame_rate = codec.framerate;
    check(avcodec_parameters_from_context(stream_->codecpar, &codec));
  }

  void write(AVPacket& packet) {
    // Containers count time in units of their own, which is how long a frame is shown.
    const AVRational unit = encoder_.context().time_base;
    av_packet_rescale_ts(&packet, unit, stream_->time_base);
    packet.duration = av_rescale_q(1, unit, stream_->time_base);
    packet.stream_index = 0;
    check(av_interleaved_write_frame(container_.get(), &packet));
  }

  const Destination destination_;
  NewFile newFile_;
  OutputPtr container_;
  Encoder encoder_;
  AVStream* stream_ = nullptr;  // the container's only one, and the container's own
};

}  // namespace

std::unique_ptr<PictureOutput> openVideoOutput(const Destination& destination,
                                               const PictureFormat& format,
                                               const Encoding& encoding) {
  return std::make_unique<VideoOutput>(destination, format, encoding);
}

}  // namespace KPF_TOOL

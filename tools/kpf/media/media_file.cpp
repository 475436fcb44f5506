#include "tools/kpf/media/media_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

#include "tools/kpf/files/image_pattern.h"
#include "tools/kpf/media/container_end.h"
#include "tools/kpf/media/stream_remarks.h"
#include "tools/kpf/media/tiff_pictures.h"
#include "tools/kpf/terminal/interrupt.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr const char* kAdvice =
    "Give a video file, an image pattern (frame_%04d.png), a camera (/dev/video0) or - .";

// Frames by which a file may end before its own length: containers round, and count the last one
// or do not.
constexpr double kFramesOfDoubt = 2.5;
constexpr double kRounding = 0.5;
// Seconds more where there is sound, whose packets are longer and padded.
constexpr double kDoubtOfSound = 0.2;

#ifdef KPF_OPENS_CAMERAS
const AVInputFormat* cameraFormat(const std::string&) {
  avdevice_register_all();
  return av_find_input_format("v4l2");
}
#else
const AVInputFormat* cameraFormat(const std::string& name) {
  throw ToolError(Outcome::kUnreadableInput,
                  fmt::format("cannot open {}: this kpf was built without cameras", escaped(name)),
                  "Install libavdevice-dev, and build it again.");
}
#endif

/// How long the file says that the longest of its streams is, which need not be the video; 0 where
/// it does not. @param stated the bytes that it says there are.
double announcedSeconds(const AVFormatContext& format, const AVStream& video,
                        std::uint64_t stated) {
  const double seconds = static_cast<double>(format.duration) / AV_TIME_BASE;
  if (std::string_view(format.iformat->name) != "avi") return seconds;
  // A recorder that could not go back, or was killed, has left a guess in both places.
  if (stated == 0) return 0;
  // Of these FFmpeg shortens the length to what the size of the file has room for.
  return std::max(seconds, static_cast<double>(video.nb_frames) * av_q2d(video.time_base));
}

bool isCamera(const std::string& name) { return name.starts_with("/dev/video"); }

/// Options for FFmpeg, which takes out those that it knows.
class Options {
 public:
  Options() = default;
  ~Options() { av_dict_free(&options_); }
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;
  void set(const char* key, const std::string& value) {
    av_dict_set(&options_, key, value.c_str(), 0);
  }
  AVDictionary** get() { return &options_; }

 private:
  AVDictionary* options_ = nullptr;
};

}  // namespace

MediaFile::MediaFile(const std::string& name, const MediaHints& hints)
    : name_(name), hints_(hints), before_(logCounts()) {
  open();
  findVideo();
}

void MediaFile::open() {
  listenToFFmpeg();
  Options options;
  const AVInputFormat* kind = nullptr;
  if (isCamera(name_)) {
    kind = cameraFormat(name_);
  } else if (!hints_.rawSize.empty()) {
    kind = av_find_input_format("rawvideo");
    options.set("video_size", hints_.rawSize);
    options.set("pixel_format", hints_.rawFormat);
  }
  const auto pattern = ImagePattern::parse(name_);
  const auto numbers = pattern ? pattern->rangeThere() : std::nullopt;
  if (numbers && kind == nullptr) {
    kind = av_find_input_format("image2");
    options.set("pattern_type", "sequence");
    options.set("start_number", std::to_string(numbers->first));
    images_ = numbers->last - numbers->first + 1;
  }
  // Of what tells no rate itself; where there is one it stays.
  if (hints_.rate > 0 && kind != nullptr && !isCamera(name_)) {
    options.set("framerate", fmt::format("{:.6f}", hints_.rate));
  }
  AVFormatContext* format = avformat_alloc_context();
  allow(*format);
  // On failure it frees what it was given.
  const std::string url = images_ > 0 ? pattern->withFoldersEscaped() : name_;
  const int result = avformat_open_input(&format, url.c_str(), kind, options.get());
  if (result < 0) {
    throw ToolError(Outcome::kUnreadableInput,
                    fmt::format("cannot open {}: {}", escaped(name_), ffmpegError(result)),
                    input_.io() != nullptr && input_.isPipe() ? kPipeAdvice : kAdvice);
  }
  format_.reset(format);
  // What is odd in a header need not have cost a frame; but of Ogg the first frames come with it.
  if (std::string_view(format->iformat->name) != "ogg") {
    before_.ofContainers = logCounts().ofContainers;
  }
}

/// Opens the one file here, so that FFmpeg need not be allowed to open any.
void MediaFile::allow(AVFormatContext& format) {
  // A wait for a camera or a pipe ends when the user wants to stop.
  format.interrupt_callback.callback = [](void*) { return Interrupt::requested() ? 1 : 0; };
  if (images_ > 0) {
    format.protocol_whitelist = av_strdup("file");
    return;
  }
  format.protocol_whitelist = av_strdup("none");
  if (isCamera(name_)) return;
  const std::string url = name_ == "-" ? "pipe:0" : "file:" + name_;
  const int result = input_.open(url, format.interrupt_callback);
  if (result < 0) {
    AVFormatContext* unused = &format;
    avformat_close_input(&unused);
    throw ToolError(Outcome::kUnreadableInput,
                    fmt::format("cannot open {}: {}", escaped(name_), ffmpegError(result)),
                    kAdvice);
  }
  format.pb = input_.io();
}

void MediaFile::findVideo() {
  if (avformat_find_stream_info(format_.get(), nullptr) >= 0) {
    stream_ = av_find_best_stream(format_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec_, 0);
  }
  if (stream_ < 0 || codec_ == nullptr) {
    throw ToolError(Outcome::kUnreadableInput, fmt::format("{} holds no video", escaped(name_)),
                    kAdvice);
  }
  const AVRational rate = av_guess_frame_rate(format_.get(), format_->streams[stream_], nullptr);
  if (rate.num > 0 && rate.den > 0) frameRate_ = av_q2d(rate);
}

std::vector<std::string> MediaFile::remarks() const {
  return streamRemarks(*format_, stream_, escaped(name_));
}

bool MediaFile::read(AVPacket& packet) {
  for (;;) {
    const int result = av_read_frame(format_.get(), &packet);
    if (result == AVERROR(EAGAIN)) continue;  // a device that has no frame yet
    if (result < 0) {
      noteEnd(result);
      return false;
    }
    note(packet);
    if (packet.stream_index == stream_) return true;
    av_packet_unref(&packet);
  }
}

void MediaFile::note(const AVPacket& packet) {
  if (packet.stream_index == stream_) {
    ++packets_;
    if (stream().codecpar->codec_id == AV_CODEC_ID_TIFF) {
      const auto size = static_cast<std::size_t>(packet.size);
      pictures_ = std::max(pictures_, tiffPictures({packet.data, size}));
    }
  }
  bytes_ = std::max(bytes_, packet.pos + packet.size);
  newest_ = packet.pos;
  // Some containers tell the time of decoding alone.
  const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
  if (time == AV_NOPTS_VALUE) return;
  const double end = static_cast<double>(time + packet.duration) *
                     av_q2d(format_->streams[packet.stream_index]->time_base);
  // A length counts from 0 where the first frame comes later, and from the first frame where that
  // comes before, as with sound that a player leaves out.
  const bool before0 = format_->start_time != AV_NOPTS_VALUE && format_->start_time < 0;
  const double start = before0 ? static_cast<double>(format_->start_time) / AV_TIME_BASE : 0;
  end_ = std::max(end_, end - start);
}

/// What the input ends in the midst of, where FFmpeg drops that without a word; else null.
const char* MediaFile::tornPart() const {
  const std::string_view container(format_->iformat->name);
  if (container == "yuv4mpegpipe" && avio_tell(format_->pb) > bytes_) return "frame";
  // Its frames have one size, and FFmpeg fills what is missing of the last one.
  if (container == "dv" && static_cast<std::uint64_t>(bytes_) > input_.size()) return "frame";
  // All packets of a transport stream have one size, and it may begin within any of them.
  std::int64_t size = 0;
  if (container != "mpegts" || newest_ < 0 ||
      av_opt_get_int(format_->priv_data, "ts_packetsize", 0, &size) < 0 || size <= 0) {
    return nullptr;
  }
  return (avio_tell(format_->pb) - newest_) % size != 0 ? "packet" : nullptr;
}

/// Not every end is one: the disk may fail, and a damaged container may lead nowhere.
void MediaFile::noteEnd(int result) {
  if (Interrupt::requested()) return;
  // Many containers take a failing disk for the end of the file.
  if (format_->pb != nullptr && format_->pb->error < 0) result = format_->pb->error;
  if (pictures_ > 1) {
    trouble_ = fmt::format("{} holds {} in one file: only the first is taken", escaped(name_),
                           countText(pictures_, "picture"));
  } else if (images_ > packets_) {
    trouble_ = fmt::format("{} has a gap: {} in a row, of numbers up to the {}th", escaped(name_),
                           countText(packets_, "image"), images_);
  } else if (result != AVERROR_EOF && images_ == 0) {
    trouble_ =
        fmt::format("{} cannot be read any further: {}", escaped(name_), ffmpegError(result));
  } else if (const char* const torn = tornPart()) {
    trouble_ = fmt::format("{} ends within a {}", escaped(name_), torn);
  } else if (trouble_ = earlyEnd(); trouble_.empty()) {
    trouble_ = missingPart();
    if (trouble_.empty() && logCounts().ofContainers != before_.ofContainers) {
      trouble_ = fmt::format("{} is damaged between its frames: {}", escaped(name_),
                             escaped(latestOfContainers()));
    }
  }
}

/// Whether the input is shorter, in seconds, than it says.
std::string MediaFile::earlyEnd() const {
  if (format_->duration <= 0 || frameRate_ <= 0 ||
      format_->duration_estimation_method != AVFMT_DURATION_FROM_STREAM) {
    return "";
  }
  const std::uint64_t stated = statedSize(*format_, input_);
  const double announced = announcedSeconds(*format_, stream(), stated);
  const double doubt = kFramesOfDoubt / frameRate_ + (format_->nb_streams > 1 ? kDoubtOfSound : 0);
  // Where bytes are missing, too, nothing is left of the doubt but the rounding of times.
  if (announced - end_ <= (stated > input_.size() ? kRounding / frameRate_ : doubt)) return "";
  return fmt::format("{} ends after {:.2f} of {:.2f} s", escaped(name_), end_, announced);
}

/// Whether the container itself is cut off.
std::string MediaFile::missingPart() const {
  if (input_.io() == nullptr) return "";
  std::string part = missingEnd(*format_, stream_, input_, static_cast<std::uint64_t>(bytes_));
  if (logCounts().earlyEnds != before_.earlyEnds) part = "the end of what it began last";
  return part.empty() ? "" : fmt::format("{} is cut off: {} is missing", escaped(name_), part);
}

}  // namespace KPF_TOOL

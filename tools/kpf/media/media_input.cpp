#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/files/image_pattern.h"
#include "tools/kpf/media/decoder.h"
#include "tools/kpf/media/grey_picture.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/media/media_file.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

/// The first video stream of an input, decoded frame by frame.
class MediaInput : public FrameSource {
 public:
  MediaInput(const std::string& name, Samples samples, const MediaHints& hints);

  unsigned width() const override { return width_; }
  unsigned height() const override { return height_; }
  Samples samples() const override { return samples_; }
  double frameRate() const override { return file_.frameRate(); }
  /// What containers say about it is no more than a guess.
  std::uint64_t frameCount() const override { return 0; }

  bool next() override;
  std::vector<std::string> remarks() const override { return file_.remarks(); }
  bool lost() const override { return decoder_.isDamaged(); }
  std::string flaw() const override;
  std::optional<double> time() const override;
  void copyTo(unsigned char* out, std::size_t stride) override;
  void skip(std::uint64_t frames) override;

 private:
  bool hasSize(const AVFrame& frame) const;

  std::string name_;
  Samples samples_;
  MediaFile file_;
  Decoder decoder_;
  GreyPicture grey_;
  std::uint64_t damaged_ = 0;  // frames so far
  unsigned width_;
  unsigned height_;
};

MediaInput::MediaInput(const std::string& name, Samples samples, const MediaHints& hints)
    : name_(name),
      samples_(samples),
      file_(name, hints),
      decoder_(file_.codec(), *file_.stream().codecpar,
               [this](AVPacket& packet) { return file_.read(packet); }),
      width_(static_cast<unsigned>(decoder_.context().width)),
      height_(static_cast<unsigned>(decoder_.context().height)) {
  if (decoder_.status() >= 0 && width_ > 0 && height_ > 0) return;
  const std::string why =
      decoder_.status() < 0 ? ffmpegError(decoder_.status()) : "its frames tell no size";
  throw ToolError(Outcome::kUnreadableInput,
                  fmt::format("cannot decode {}: {}", escaped(name_), why),
                  name_ == "-" ? kPipeAdvice : "Give a video that this FFmpeg can decode.");
}

bool MediaInput::next() {
  if (!decoder_.next()) return false;
  if (lost()) ++damaged_;
  const AVFrame& frame = decoder_.frame();
  if (lost() || hasSize(frame)) return true;
  throw ToolError(Outcome::kCutShort,
                  fmt::format("{} changes its size from {} x {} to {} x {} pixels", escaped(name_),
                              width_, height_, frame.width, frame.height),
                  "Cut the source where its size changes, and record the pieces.");
}

std::string MediaInput::flaw() const {
  std::vector<std::string> parts;
  if (damaged_ > 0) parts.push_back(areText(damaged_, "frame") + " damaged");
  if (const std::uint64_t count = decoder_.unplacedDamage(); count > 0) {
    parts.push_back(areText(count, "packet") + " damaged, and nobody can tell which frame it is");
  }
  if (!file_.trouble().empty()) parts.push_back(file_.trouble());
  return fmt::format("{}", fmt::join(parts, ", "));
}

bool MediaInput::hasSize(const AVFrame& frame) const {
  return static_cast<unsigned>(frame.width) == width_ &&
         static_cast<unsigned>(frame.height) == height_;
}

std::optional<double> MediaInput::time() const {
  if (decoder_.time() == AV_NOPTS_VALUE) return std::nullopt;
  return static_cast<double>(decoder_.time()) * av_q2d(file_.stream().time_base);
}

void MediaInput::skip(std::uint64_t frames) {
  // By decoding: containers do not find the frame of a number reliably.
  while (frames > 0 && next()) --frames;
}

void MediaInput::copyTo(unsigned char* out, std::size_t stride) {
  if (!hasSize(decoder_.frame())) {  // damaged beyond any picture
    for (unsigned y = 0; y < height_; ++y) std::memset(out + y * stride, 0, rowSize());
  } else if (!grey_.copy(decoder_.frame(), out, stride, samples_)) {
    throw ToolError(Outcome::kUnreadableInput,
                    fmt::format("cannot turn {} into grey", escaped(name_)),
                    "Convert it to a common pixel format first.");
  }
}

}  // namespace

bool tellsNoRate(const std::string& name, const MediaHints& hints) {
  return ImagePattern::parse(name) || !hints.rawSize.empty();
}

std::unique_ptr<FrameSource> openMedia(const std::string& name, Samples samples,
                                       const MediaHints& hints) {
  return std::make_unique<MediaInput>(name, samples, hints);
}

}  // namespace KPF_TOOL

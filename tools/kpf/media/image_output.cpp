#include "tools/kpf/media/image_output.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/kpf/files/image_pattern.h"
#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr const char* kPatternAdvice = "Put a pattern into the name, like frame_%06d.png.";

ToolError doNotFit(const std::string& frames) {
  return {Outcome::kWrongUsage, fmt::format("{} do not go into one image", frames), kPatternAdvice};
}

/// Nothing for one image. @throws ToolError for what was meant as a pattern and is none.
std::optional<ImagePattern> patternOf(const std::string& name) {
  auto pattern = ImagePattern::parse(name);
  if (hasPercent(name) && !(pattern && pattern->isPadded())) {
    throw ToolError(Outcome::kWrongUsage,
                    fmt::format("{} is no pattern: it must hold one %06d", escaped(name)),
                    kPatternAdvice);
  }
  return pattern;
}

/// Each packet of the encoder is a whole file.
class ImageOutput : public PictureOutput {
 public:
  ImageOutput(const Destination& destination, const PictureFormat& format, const Encoding& encoding)
      : destination_(destination),
        pattern_(patternOf(destination.name)),
        number_(format.firstNumber),
        encoder_(destination.name, format, encoding, 0) {
    if (!pattern_ && format.frames.value_or(1) > 1) {
      throw doNotFit(countText(*format.frames, "frame"));
    }
    checkAllFree(format);
  }

  void add(const unsigned char* rows) override {
    if (!pattern_ && added_) throw doNotFit("several frames");
    added_ = true;
    encoder_.encode(rows, [this](AVPacket& packet) { write(packet); });
  }

  void pass() override { ++number_; }

  void finish() override {
    encoder_.finish([this](AVPacket& packet) { write(packet); });
    // One image waits for the end: there may be a second frame, for which it has no room.
    if (image_) image_->commit();
  }

 private:
  /// Before the first image is made: nobody wants half of them.
  void checkAllFree(const PictureFormat& format) const {
    if (!pattern_) return checkFree(destination_.name, destination_);
    for (const std::uint64_t number : pattern_->numbersThere()) {
      if (number < number_) continue;
      if (format.frames && number - number_ >= *format.frames) continue;
      checkFree(pattern_->nameOf(number), destination_);
    }
  }

  void write(const AVPacket& packet) {
    const std::string name = pattern_ ? pattern_->nameOf(number_++) : destination_.name;
    image_.emplace(name, destination_);
    image_->write(packet.data, static_cast<std::size_t>(packet.size));
    if (!pattern_) return;
    image_->commit();
    image_.reset();
  }

  const Destination destination_;
  const std::optional<ImagePattern> pattern_;
  std::uint64_t number_;  // of the next image
  Encoder encoder_;
  std::optional<NewFile> image_;  // the one that is not committed yet
  bool added_ = false;
};

}  // namespace

std::unique_ptr<PictureOutput> openImageOutput(const Destination& destination,
                                               const PictureFormat& format,
                                               const Encoding& encoding) {
  return std::make_unique<ImageOutput>(destination, format, encoding);
}

}  // namespace KPF_TOOL

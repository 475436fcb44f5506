#include "tools/kpf/files/image_files.h"

#include <fmt/format.h>

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

}  // namespace

ImageFiles::ImageFiles(const Destination& destination, std::uint64_t firstNumber,
                       std::optional<std::uint64_t> images)
    : destination_(destination), pattern_(patternOf(destination.name)), number_(firstNumber) {
  if (!pattern_ && images.value_or(1) > 1) throw doNotFit(countText(*images, "frame"));
  checkAllFree(images);
}

void ImageFiles::checkAllFree(std::optional<std::uint64_t> images) const {
  if (!pattern_) return checkFree(destination_.name, destination_);
  for (const std::uint64_t number : pattern_->numbersThere()) {
    if (number < number_) continue;
    if (images && number - number_ >= *images) continue;
    checkFree(pattern_->nameOf(number), destination_);
  }
}

void ImageFiles::add(std::span<const unsigned char> file) {
  if (!pattern_ && image_) throw doNotFit("several frames");
  const std::string name = pattern_ ? pattern_->nameOf(number_++) : destination_.name;
  image_.emplace(name, destination_);
  image_->write(file.data(), file.size());
  if (pattern_) finish();
}

void ImageFiles::finish() {
  if (!image_) return;
  image_->commit();
  image_.reset();
}

}  // namespace KPF_TOOL

#include "stream/vx_kpf_header.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "format/kpf_fixed.h"
#include "format/kpf_sizes.h"

namespace VLM_KPF {
namespace {

using KPF_FORMAT::Field;
using KPF_FORMAT::store;
namespace layout = KPF_FORMAT::HEADER;

void storeDouble(HeaderImage& image, Field field, double value) {
  store(image.data(), field, std::bit_cast<std::uint64_t>(value));
}

/// Copies `text` up to its first zero byte, at most to the end of `field`.
void storeText(HeaderImage& image, Field field, std::string_view text) {
  const auto length = std::min({text.find('\0'), text.size(), field.size});
  std::copy_n(text.data(), length, image.data() + field.offset);
}

/// Runs on behind its field, to the end of the image at most: whatever is stored after it wins.
void storeText2(HeaderImage& image, std::string_view text) {
  const std::size_t offset = layout::kText2.offset;
  storeText(image, {offset, layout::kSize - offset}, text);
}

void storeFixed(HeaderImage& image) {
  for (const auto& [field, value] : KPF_FORMAT::kFixedNumbers) store(image.data(), field, value);
  for (const auto& [field, text, wholeField] : KPF_FORMAT::kFixedTexts) {
    if (wholeField) std::fill_n(image.data() + field.offset, field.size, 0);
    storeText(image, field, text);
  }
}

}  // namespace

HeaderImage headerImage(const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration,
                        unsigned framesPerDivFile) {
  HeaderImage image{};
  storeText2(image, configuration.text2);
  storeFixed(image);
  storeText(image, layout::kText5, configuration.text5);
  storeDouble(image, layout::kValue7, configuration.value7);
  store(image.data(), layout::kWidth, configuration.width);
  store(image.data(), layout::kHeight, configuration.height);
  const bool packed12 = KPF_FORMAT::isPacked12(static_cast<unsigned>(configuration.bitsPerPixel));
  store(image.data(), layout::kPacked12, packed12 ? 1 : 0);
  storeDouble(image, layout::kFrameRate, configuration.frameRate);
  storeDouble(image, layout::kFrameRateAgain, configuration.frameRate);
  storeDouble(image, layout::kValue3, configuration.value3);
  store(image.data(), layout::kFramesPerDivFile, framesPerDivFile);
  store(image.data(), layout::kFrameCount, configuration.frameCount);
  store(image.data(), layout::kValue5, KPF_FORMAT::storedValue5(configuration.value5));
  return image;
}

}  // namespace VLM_KPF

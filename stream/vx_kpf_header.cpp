#include "stream/vx_kpf_header.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "stream/vx_stream_kpf_packed.h"

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

void storeGeometry(HeaderImage& image, const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& from) {
  store(image.data(), layout::kWidth, from.width);
  store(image.data(), layout::kHeight, from.height);
  store(image.data(), layout::kPacked12, from.bitsPerPixel == 8 ? 0 : 1);
  storeDouble(image, layout::kFrameRate, from.frameRate);
}

}  // namespace

HeaderImage headerImage(const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration,
                        unsigned framesPerDivFile) {
  constexpr std::string_view kVersion = VxKPFPackedStream::KPF_PACKED_FILE_v3_0;
  constexpr std::string_view kConverted = VxKPFPackedStream::KPF_PACKED_CONVERTED;
  HeaderImage image{};

  storeText(image, layout::kVersion, kVersion);
  storeText(image, layout::kText5, configuration.text5);
  storeDouble(image, layout::kValue7, configuration.value7);
  storeDouble(image, layout::kScale, 1.0);
  storeGeometry(image, configuration);
  storeDouble(image, layout::kValue3, configuration.value3);
  storeText(image, layout::kConverted208, kConverted);
  storeText(image, layout::kConverted278, kConverted);
  storeText(image, layout::kConverted308, kConverted);

  // text2 runs on behind its field, to the end of the image at most. The numbers and texts stored
  // after it win where they overlap; between them its bytes stay.
  storeText(image, {layout::kText2.offset, layout::kSize - layout::kText2.offset},
            configuration.text2);
  storeText(image, layout::kConverted384, kConverted);
  storeText(image, layout::kConverted444, kConverted);
  store(image.data(), layout::kZero460, 0);
  store(image.data(), layout::kFramesPerDivFile, framesPerDivFile);
  store(image.data(), layout::kFrameCount, configuration.frameCount);
  store(image.data(), layout::kZero472, 0);
  store(image.data(), layout::kMarker473, 1);
  store(image.data(), layout::kZero481, 0);
  storeDouble(image, layout::kMarker483, 60.0);
  store(image.data(), layout::kVersionAgain, 0);
  storeText(image, layout::kVersionAgain, kVersion);
  store(image.data(), layout::kZero496, 0);

  for (const Field zero : {layout::kZero1746, layout::kZero1754, layout::kZero1762}) {
    store(image.data(), zero, 0);
  }
  store(image.data(), layout::kMarker1766, 1);
  storeDouble(image, layout::kFrameRateAgain, configuration.frameRate);
  store(image.data(), layout::kZero1802, 0);
  const bool listed = configuration.value5 == 1 || configuration.value5 == 2;
  store(image.data(), layout::kValue5, listed ? static_cast<unsigned>(configuration.value5) : 0);
  store(image.data(), layout::kZero1882, 0);
  return image;
}

}  // namespace VLM_KPF

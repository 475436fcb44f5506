#include "reader/kpf_header_check.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "format/kpf_fixed.h"
#include "format/kpf_layout.h"
#include "format/kpf_sizes.h"
#include "reader/kpf_header.h"

namespace KPF_READER {
namespace {

using KPF_FORMAT::Field;
namespace layout = KPF_FORMAT::HEADER;
using Image = std::span<const unsigned char>;
using Deviations = std::vector<HeaderDeviation>;
constexpr auto kFixed = HeaderDeviation::Kind::kFixedBytes;

Image bytesOf(Image image, Field field) { return image.subspan(field.offset, field.size); }

void checkNumbers(Image image, Deviations& found) {
  for (const auto& [field, value] : KPF_FORMAT::kFixedNumbers) {
    if (KPF_FORMAT::load(image.data(), field) == value) continue;
    found.push_back({kFixed, field.offset, "a fixed number has another value"});
  }
}

void checkTexts(Image image, Deviations& found) {
  for (const auto& [field, text, wholeField] : KPF_FORMAT::kFixedTexts) {
    std::string expected(text);
    if (wholeField) expected.resize(field.size);
    const auto differs =
        std::mismatch(expected.begin(), expected.end(), bytesOf(image, field).begin(),
                      [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
    if (differs.first == expected.end()) continue;
    const auto at = static_cast<std::size_t>(differs.first - expected.begin());
    found.push_back({kFixed, field.offset + at, "a fixed text reads otherwise"});
  }
}

/// Follows a text through fields: once it has ended, the rest is zero.
class TextEnd {
 public:
  explicit TextEnd(Deviations& found) : found_(found) {}

  void follow(Image image, Field field) {
    const Image bytes = bytesOf(image, field);
    auto next = bytes.begin();
    if (!ended_) next = std::find(next, bytes.end(), 0);
    ended_ = ended_ || next != bytes.end();
    next = std::find_if(next, bytes.end(), [](unsigned char byte) { return byte != 0; });
    if (next == bytes.end()) return;
    const auto at = static_cast<std::size_t>(next - bytes.begin());
    found_.push_back({kFixed, field.offset + at, "not zero, where nothing is stored"});
  }

 private:
  Deviations& found_;
  bool ended_ = false;
};

void checkUnused(Image image, Deviations& found) {
  TextEnd(found).follow(image, layout::kText5);
  TextEnd text2(found);
  text2.follow(image, layout::kText2);
  for (const Field field : KPF_FORMAT::kOverrunOfText2) text2.follow(image, field);
}

void checkPair(Image image, Field first, Field second, const char* name, Deviations& found) {
  const Image a = bytesOf(image, first);
  if (std::equal(a.begin(), a.end(), bytesOf(image, second).begin())) return;
  found.push_back(
      {HeaderDeviation::Kind::kUnequalPair, second.offset,
       std::string(name) + " differs from the one at byte " + std::to_string(first.offset)});
}

void checkValue5(Image image, Deviations& found) {
  const auto value = static_cast<std::int64_t>(KPF_FORMAT::load(image.data(), layout::kValue5));
  if (value == 0 || KPF_FORMAT::storedValue5(value) != 0) return;
  found.push_back({kFixed, layout::kValue5.offset, "value5 is none of 0, 1 and 2"});
}

/// The writer has them as 32-bit integers.
void checkWholeNumbers(Image image, Deviations& found) {
  for (const Field field : {layout::kValue7, layout::kFrameRate, layout::kValue3}) {
    const auto value = std::bit_cast<double>(KPF_FORMAT::load(image.data(), field));
    using Integer = std::numeric_limits<std::int32_t>;
    if (value >= Integer::min() && value <= Integer::max() && std::trunc(value) == value) continue;
    found.push_back({HeaderDeviation::Kind::kImpossibleValue, field.offset,
                     "not a whole number of 32 bits, as recorders write"});
  }
}

void checkFramesPerDivFile(const Header& header, Deviations& found) {
  const std::size_t most = KPF_FORMAT::recordsPerDivFile(header.recordSize());
  if (header.framesPerDivFile == most) return;
  found.push_back({HeaderDeviation::Kind::kFramesPerDivFile, layout::kFramesPerDivFile.offset,
                   std::to_string(header.framesPerDivFile) + " frames a data file, where " +
                       std::to_string(most) + " fit"});
}

}  // namespace

Deviations findDeviations(Image image) {
  Deviations found;
  checkNumbers(image, found);
  checkTexts(image, found);
  checkUnused(image, found);
  checkValue5(image, found);
  checkWholeNumbers(image, found);
  std::sort(found.begin(), found.end(),
            [](const auto& a, const auto& b) { return a.offset < b.offset; });
  checkPair(image, layout::kFrameRate, layout::kFrameRateAgain, "the frame rate", found);
  checkPair(image, layout::kIdentifier, layout::kIdentifierAgain, "the identifier", found);
  checkFramesPerDivFile(parseHeader(image, ""), found);
  return found;
}

}  // namespace KPF_READER

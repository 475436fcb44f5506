#include "reader/kpf_header_check.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "format/kpf_layout.h"
#include "reader/kpf_header.h"

namespace KPF_READER {
namespace {

using KPF_FORMAT::Field;
namespace layout = KPF_FORMAT::HEADER;
using Image = std::span<const unsigned char>;
using Deviations = std::vector<HeaderDeviation>;
constexpr auto kFixed = HeaderDeviation::Kind::kFixedBytes;

struct FixedNumber {
  Field field;
  std::uint64_t value;
};

constexpr FixedNumber kNumbers[] = {
    {layout::kScale, std::bit_cast<std::uint64_t>(1.0)},
    {layout::kZero172, 0},
    {layout::kZero192, 0},
    {layout::kZero320, 0},
    {layout::kZero460, 0},
    {layout::kZero472, 0},
    {layout::kMarker473, 1},
    {layout::kZero481, 0},
    {layout::kMarker483, std::bit_cast<std::uint64_t>(60.0)},
    {layout::kZero496, 0},
    {layout::kZero1746, 0},
    {layout::kZero1754, 0},
    {layout::kZero1762, 0},
    {layout::kMarker1766, 1},
    {layout::kZero1802, 0},
    {layout::kZero1882, 0},
};

struct FixedText {
  Field field;
  std::string_view text;
  bool restIsZero;  // behind the text; else a long text2 may show there
};

constexpr FixedText kTexts[] = {
    {layout::kVersion, "v3.0", true},
    {layout::kConverted208, "Converted", true},
    {layout::kConverted278, "Converted", true},
    {layout::kConverted308, "Converted", true},
    {layout::kConverted384, "Converted", false},
    {layout::kConverted444, "Converted", false},
    {layout::kVersionAgain, "v3.0", true},
};

constexpr std::size_t kConvertedLength = 9;

/// `field` without the text at its start.
constexpr Field behindConverted(Field field) {
  return {field.offset + kConvertedLength, field.size - kConvertedLength};
}

/// What a text2 of more than 60 bytes runs on into, in that order; else zero.
constexpr Field kOverrun[] = {
    behindConverted(layout::kConverted384),
    behindConverted(layout::kConverted444),
    layout::kZero498,
    layout::kZero1730,
    layout::kZero1778,
    layout::kZero1810,
    layout::kZero1886,
};

Image bytesOf(Image image, Field field) { return image.subspan(field.offset, field.size); }

void checkNumbers(Image image, Deviations& found) {
  for (const auto& [field, value] : kNumbers) {
    if (KPF_FORMAT::load(image.data(), field) == value) continue;
    found.push_back({kFixed, field.offset, "a fixed number has another value"});
  }
}

void checkTexts(Image image, Deviations& found) {
  for (const auto& [field, text, restIsZero] : kTexts) {
    std::string expected(text);
    if (restIsZero) expected.resize(field.size);
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
  for (const Field field : kOverrun) text2.follow(image, field);
}

void checkPair(Image image, Field first, Field second, const char* name, Deviations& found) {
  const Image a = bytesOf(image, first);
  if (std::equal(a.begin(), a.end(), bytesOf(image, second).begin())) return;
  found.push_back(
      {HeaderDeviation::Kind::kUnequalPair, second.offset,
       std::string(name) + " differs from the one at byte " + std::to_string(first.offset)});
}

void checkValue5(Image image, Deviations& found) {
  if (KPF_FORMAT::load(image.data(), layout::kValue5) <= 2) return;
  found.push_back({kFixed, layout::kValue5.offset, "value5 is none of 0, 1 and 2"});
}

void checkFramesPerDivFile(const Header& header, Deviations& found) {
  const std::size_t most = kLargestDivFile / header.recordSize();
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
  std::sort(found.begin(), found.end(),
            [](const auto& a, const auto& b) { return a.offset < b.offset; });
  checkPair(image, layout::kFrameRate, layout::kFrameRateAgain, "the frame rate", found);
  checkPair(image, layout::kIdentifier, layout::kIdentifierAgain, "the identifier", found);
  checkFramesPerDivFile(parseHeader(image, ""), found);
  return found;
}

}  // namespace KPF_READER

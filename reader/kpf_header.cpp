#include "reader/kpf_header.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <tuple>

#include "format/kpf_fixed.h"
#include "format/kpf_layout.h"
#include "format/kpf_sizes.h"

namespace KPF_READER {
namespace {

using KPF_FORMAT::Field;
namespace layout = KPF_FORMAT::HEADER;

static_assert(std::tuple_size_v<decltype(Header::identifier)> == layout::kIdentifier.size);

/// Takes fields out of a header image that is long enough.
class Fields {
 public:
  Fields(std::span<const unsigned char> image, const std::string& path)
      : image_(image), path_(path) {}

  std::uint32_t number(Field field) const {
    return static_cast<std::uint32_t>(KPF_FORMAT::load(image_.data(), field));
  }

  double finite(Field field, const char* name) const {
    const auto value = std::bit_cast<double>(KPF_FORMAT::load(image_.data(), field));
    check(std::isfinite(value), field, std::string(name) + " is not a finite number");
    return value;
  }

  std::string text(Field field) const {
    const auto bytes = image_.subspan(field.offset, field.size);
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
  }

  void check(bool holds, Field field, const std::string& problem) const {
    if (!holds) throw RecordingError(path_, field.offset, problem);
  }

 private:
  std::span<const unsigned char> image_;
  const std::string& path_;
};

void checkSize(std::span<const unsigned char> image, const std::string& path) {
  const std::string size = std::to_string(image.size());
  const std::string expected = std::to_string(layout::kSize);
  if (image.size() < layout::kSize) {
    throw RecordingError(path, image.size(),
                         "the header ends after " + size + " of " + expected + " bytes");
  }
  if (image.size() > layout::kSize) {
    throw RecordingError(path, layout::kSize,
                         "the header is " + size + " bytes long, not " + expected);
  }
}

void readGeometry(const Fields& fields, Header& header) {
  header.width = fields.number(layout::kWidth);
  header.height = fields.number(layout::kHeight);
  const std::uint32_t packed12 = fields.number(layout::kPacked12);
  fields.check(packed12 <= 1, layout::kPacked12, "the pixel form is neither 0 nor 1");
  header.packed12 = packed12 == 1;
  fields.check(header.recordSize() <= KPF_FORMAT::kLargestDivFile, layout::kWidth,
               "a frame is larger than a data file can be");
}

void readCounts(const Fields& fields, Header& header) {
  header.framesPerDivFile = fields.number(layout::kFramesPerDivFile);
  fields.check(header.framesPerDivFile != 0, layout::kFramesPerDivFile,
               "data files of no frames at all");
  fields.check(header.framesPerDivFile <= KPF_FORMAT::recordsPerDivFile(header.recordSize()),
               layout::kFramesPerDivFile, "more frames than a data file can hold");
  header.frameCount = fields.number(layout::kFrameCount);
}

}  // namespace

Header parseHeader(std::span<const unsigned char> image, const std::string& path) {
  const Fields fields(image, path);
  const bool hasVersion = image.size() >= end(layout::kVersion);
  fields.check(!hasVersion || fields.text(layout::kVersion) == KPF_FORMAT::kVersion,
               layout::kVersion, "not the header of a recording");
  checkSize(image, path);

  Header header;
  header.version = fields.text(layout::kVersion);
  header.text5 = fields.text(layout::kText5);
  header.text2 = fields.text(layout::kText2);
  header.value7 = fields.finite(layout::kValue7, "value7");
  header.value3 = fields.finite(layout::kValue3, "value3");
  header.frameRate = fields.finite(layout::kFrameRate, "the frame rate");
  readGeometry(fields, header);
  readCounts(fields, header);
  header.value5 = fields.number(layout::kValue5);
  std::copy_n(image.data() + layout::kIdentifier.offset, layout::kIdentifier.size,
              header.identifier.begin());
  return header;
}

std::size_t Header::frameSize() const { return KPF_FORMAT::packedSizeOf(pixelCount(), packed12); }

std::size_t Header::recordSize() const { return KPF_FORMAT::recordSizeOf(frameSize()); }

std::uint32_t Header::divFileCount() const {
  return frameCount / framesPerDivFile + (frameCount % framesPerDivFile != 0 ? 1 : 0);
}

std::uint32_t Header::recordsInDivFile(std::uint32_t number) const {
  const std::uint64_t before = std::uint64_t{number - 1} * framesPerDivFile;
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(framesPerDivFile, frameCount - before));
}

}  // namespace KPF_READER

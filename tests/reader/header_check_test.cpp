// Every byte of the header that can only be one way is watched.
#include <cstddef>
#include <string>
#include <vector>

#include "reader/kpf_header.h"
#include "reader/kpf_header_check.h"
#include "stream/vx_kpf_header.h"
#include "stream/vx_stream_kpf_packed.h"
#include "tests/reader/recording_bytes.h"

namespace {

using KPF_READER::HeaderDeviation;
using TEST_READER::headerBytes;
using TEST_READER::put;
using TEST_READER::with;
using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::writeBytes;
using Kind = HeaderDeviation::Kind;
using testing::ElementsAre;

class HeaderCheck : public TEST_READER::HandMade {
 protected:
  /// Of the header as the writer would make it, 97612893 frames a data file.
  static Bytes flawless() { return with(headerBytes(), 464, {0x5D, 0x74, 0xD1, 0x05}); }

  std::vector<HeaderDeviation> deviations(const Bytes& bytes) {
    writeBytes(header, bytes);
    return open().headerDeviations();
  }

  std::vector<std::string> problems(std::size_t offset, const Bytes& replacement) {
    std::vector<std::string> texts;
    for (const auto& found : deviations(with(flawless(), offset, replacement))) {
      texts.push_back(std::to_string(found.offset) + " " + found.problem);
    }
    return texts;
  }

  /// Whether a single changed bit at `offset` is noticed. Looks at the bytes without a file around
  /// them: thousands of those take seconds where files are slow, as they are under Wine.
  static bool noticed(std::size_t offset) {
    Bytes bytes = flawless();
    bytes[offset] ^= 0x40;
    try {
      KPF_READER::parseHeader(bytes, "");
      return !KPF_READER::findDeviations(bytes).empty();
    } catch (const KPF_READER::RecordingError&) {
      return true;
    }
  }
};

TEST_F(HeaderCheck, FlawlessHeaderHasNoDeviations) {
  EXPECT_THAT(deviations(flawless()), testing::IsEmpty());
}

TEST_F(HeaderCheck, OnlyTheCallersOwnFieldsMayHoldAnything) {
  std::vector<std::size_t> unnoticed;
  for (std::size_t offset = 0; offset < 2998; ++offset) {
    if (!noticed(offset)) unnoticed.push_back(offset);
  }
  std::vector<std::size_t> free;
  const auto allow = [&free](std::size_t from, std::size_t to) {
    for (; from < to; ++from) free.push_back(from);
  };
  allow(5, 10);     // text5: its four bytes, and a fifth
  allow(162, 163);  // value7: the one bit of these that leaves a whole number
  allow(206, 207);  // value3, likewise
  allow(324, 328);  // text2, likewise
  allow(468, 472);  // frames announced
  EXPECT_EQ(unnoticed, free);
}

TEST_F(HeaderCheck, FixedBytesAreNamedByTheirOffset) {
  EXPECT_THAT(problems(164, {1}), ElementsAre("164 a fixed number has another value"));
  EXPECT_THAT(problems(388, {'X'}), ElementsAre("388 a fixed text reads otherwise"));
  EXPECT_THAT(problems(2997, {1}), ElementsAre("2997 not zero, where nothing is stored"));
  EXPECT_THAT(problems(1806, {3}), ElementsAre("1806 value5 is none of 0, 1 and 2"));
}

TEST_F(HeaderCheck, PairsMustBeEqual) {
  EXPECT_THAT(problems(1714, {0}),
              ElementsAre("1714 the identifier differs from the one at byte 1698"));
  EXPECT_THAT(problems(1776, {0}),
              ElementsAre("1770 the frame rate differs from the one at byte 184"));
}

TEST_F(HeaderCheck, FramesPerDataFileAreAKindOfTheirOwn) {
  const auto found = deviations(headerBytes());
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].kind, Kind::kFramesPerDivFile);
  EXPECT_EQ(found[0].offset, 464U);
  EXPECT_EQ(found[0].problem, "2 frames a data file, where 97612893 fit");
}

TEST_F(HeaderCheck, LongText2MayRunOnBetweenTheFixedFields) {
  // 70 bytes: the 70th stands behind "Converted" at 393.
  Bytes bytes = with(flawless(), 324, Bytes(60, 't'));
  EXPECT_THAT(deviations(with(bytes, 393, {'t'})), testing::IsEmpty());
}

TEST_F(HeaderCheck, BytesBehindTheEndOfText2AreNoPartOfIt) {
  EXPECT_THAT(problems(393, {'t'}), ElementsAre("393 not zero, where nothing is stored"));
  Bytes bytes = with(flawless(), 324, Bytes(60, 't'));
  put(bytes, 393, {'t', 0, 't'});
  ASSERT_EQ(deviations(bytes).size(), 1U);
  EXPECT_EQ(deviations(bytes)[0].offset, 395U);
}

TEST_F(HeaderCheck, HeadersOfTheLibraryHaveNone) {
  for (const std::size_t length : {0U, 59U, 60U, 61U, 70U, 119U, 136U, 175U, 1500U, 2674U, 9000U}) {
    VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
    configuration.text2 = std::string(length, 't');
    configuration.text5 = std::string(length, 'f');
    configuration.width = 3;
    configuration.height = 2;
    configuration.bitsPerPixel = 8;
    configuration.frameRate = 30;
    configuration.frameCount = 5;
    const auto image = VLM_KPF::headerImage(configuration, 97612893);
    EXPECT_THAT(deviations({image.begin(), image.end()}), testing::IsEmpty()) << length;
  }
}

}  // namespace

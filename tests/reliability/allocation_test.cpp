// Every allocation of every exported function fails in turn: the exception reaches the caller,
// nothing is lost and nothing leaks, and the same call then succeeds.
#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "interface/vlm_internal_tables.h"
#include "tests/reliability/failing_new.h"
#include "tests/support/library_test.h"
#include "vlm_internal.h"

namespace {

using VLM_INTERNAL::maVector;
using VLM_INTERNAL::streamVector;

constexpr VXP_MA_CONFIGURATION kAmplifier{25.0, 20.0, 64, 64, 3.0};

class Allocation : public TEST_SUPPORT::LibraryTest {
 protected:
  Allocation() {
    configuration.width = 600;  // large enough for a kept block of memory
    configuration.height = 300;
    configuration.bitsPerPixel = 12;
    configuration.frameRate = 1;
    configuration.frameCount = 1000;
    configuration.text2 = std::string(100, 'x');
    // The library keeps one large block from frame to frame: let it have that before we count.
    std::vector<unsigned char> out(vxGetPackedSize(600, 300, 12));
    vxConvertTiffImageData(image.data(), out.data(), 0, 600, 300, 12);
    stream = vxCreatePackStreamer(folder / "rec.kpf", configuration);
    amplifier = vxCreateMotionAmplifier(&kAmplifier);
  }
  ~Allocation() override { FAILING_NEW::failAt(0); }

  /// Calls with the first, second, ... allocation failing, until there are no more; after each
  /// failure `intact` must hold. At least `least` allocations must have been there to fail.
  void failEveryAllocation(int least, const std::function<void()>& call,
                           const std::function<bool()>& intact) {
    for (int n = 1;; ++n) {
      const long before = FAILING_NEW::liveBlocks();
      FAILING_NEW::failAt(n);
      bool threw = false;
      try {
        call();
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      FAILING_NEW::failAt(0);
      if (!threw) {
        EXPECT_GT(n, least);
        return;
      }
      EXPECT_LE(FAILING_NEW::liveBlocks(), before) << "after failure " << n;
      EXPECT_TRUE(intact()) << "after failure " << n;
    }
  }

  unsigned written() const {
    unsigned configured = 0, packed = 0, count = 0;
    vxGetPackStatistics(stream, &configured, &packed, &count);
    return count;
  }

  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration;
  std::vector<unsigned char> image = std::vector<unsigned char>(1200 * 300, 0x55);
  unsigned stream = 0;
  unsigned amplifier = 0;
};

TEST_F(Allocation, OfANewStreamMayFail) {
  const std::string name = folder / "another.kpf";
  unsigned handle = 0;
  failEveryAllocation(
      5, [&] { handle = vxCreatePackStreamer(name, configuration); },
      [&] { return streamVector.size() == 1 && streamVector[0] != nullptr; });
  EXPECT_EQ(handle, 2U);
  EXPECT_EQ(vxIsPackStreamerFinished(handle), 3);
}

TEST_F(Allocation, OfARefusedStreamMayFail) {
  const std::string name = folder / "nodot";
  failEveryAllocation(
      2, [&] { vxCreatePackStreamer(name, {}); }, [&] { return streamVector.size() == 1; });
}

TEST_F(Allocation, OfAnImageMayFail) {
  int result = 0;
  failEveryAllocation(
      4, [&] { result = vxAddTiffImageData(stream, image.data()); },
      [&] { return written() == 0; });
  EXPECT_EQ(result, 3);
  EXPECT_EQ(written(), 1U);
  EXPECT_EQ(TEST_SUPPORT::readBytes(folder / "rec/rec_0001.div").size(), 16U + 270000U);
}

TEST_F(Allocation, OfPackedDataMayFail) {
  int result = 0;
  failEveryAllocation(
      4, [&] { result = vxAddPackedData(stream, image.data()); }, [&] { return written() == 0; });
  EXPECT_EQ(result, 3);
  EXPECT_EQ(written(), 1U);
}

TEST_F(Allocation, OfAPlaceholderMayFail) {
  failEveryAllocation(
      4, [&] { vxAddPlaceholder(stream); }, [&] { return written() == 0; });
  EXPECT_EQ(written(), 1U);
}

TEST_F(Allocation, OfTheNextDataFileMayFail) {
  streamVector[0]->framesPerDivFile = 1;
  vxAddPlaceholder(stream);
  failEveryAllocation(
      3, [&] { vxAddPlaceholder(stream); }, [&] { return written() == 1; });
  EXPECT_EQ(written(), 2U);
  EXPECT_EQ(TEST_SUPPORT::readBytes(folder / "rec/rec_0002.div").size(), 16U + 270000U);
}

TEST_F(Allocation, OfAReplacementMayFail) {
  int result = 0;
  failEveryAllocation(
      1, [&] { result = vxReplaceFrame(stream, 0, image.data()); }, [&] { return written() == 0; });
  EXPECT_EQ(result, 16);
}

TEST_F(Allocation, OfAConversionMayFail) {
  std::vector<unsigned char> out(vxGetPackedSize(600, 300, 12));
  failEveryAllocation(
      2, [&] { vxConvertTiffImageData(image.data(), out.data(), 0, 600, 300, 12); },
      [&] { return out[16] == 0; });
  EXPECT_EQ(out[16], 0x55);
}

TEST_F(Allocation, OfAClosingMayFail) {
  vxAddPlaceholder(stream);
  int result = 0;
  failEveryAllocation(
      0, [&] { result = vxClosePackStreamer(stream); }, [&] { return streamVector[0] != nullptr; });
  EXPECT_EQ(result, 5);
  EXPECT_EQ(streamVector[0], nullptr);
}

TEST_F(Allocation, OfANewAmplifierMayFail) {
  unsigned handle = 0;
  failEveryAllocation(
      3, [&] { handle = vxCreateMotionAmplifier(&kAmplifier); },
      [&] { return maVector.size() == 1 && maVector[0] != nullptr; });
  EXPECT_EQ(handle, 2U);
}

TEST_F(Allocation, OfTheWindowMayFailAndTheFrameStaysTheCallers) {
  const VXP_MA_CONFIGURATION wide{3000.0, 1.0, 8, 8, 3.0};
  const unsigned long_window = vxCreateMotionAmplifier(&wide);
  int failures = 0;
  for (int i = 0; i < 300; ++i) {
    auto* const frame = static_cast<unsigned char*>(::operator new(64));
    std::fill_n(frame, 64, static_cast<unsigned char>(1));
    failEveryAllocation(
        -1, [&] { vxMAAddFrame(long_window, frame); },
        [&] {
          ++failures;
          return maVector[1]->frames.size() == static_cast<std::size_t>(i) &&
                 (*maVector[1]->summer)[0] == static_cast<unsigned>(i);
        });
  }
  EXPECT_GT(failures, 0);
  EXPECT_EQ((*maVector[1]->summer)[63], 300U);
}

TEST_F(Allocation, OfAnAmplifiedFrameMayFail) {
  for (int i = 0; i < 2; ++i) {
    auto* const frame = static_cast<unsigned char*>(::operator new(64 * 64));
    std::fill_n(frame, 64 * 64, static_cast<unsigned char>(90));
    vxMAAddFrame(amplifier, frame);
  }
  std::vector<unsigned char> out(64 * 64);
  failEveryAllocation(
      0, [&] { vxMAGetFrame(amplifier, out.data()); },
      [&] { return vxMAAvailable(amplifier) && out[0] == 0; });
  EXPECT_EQ(out[0], 180);
}

}  // namespace

// Videos and images, written and read back by the two halves of the media room.
#include "tools/kpf/media/media.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tools/kpf/terminal/tool_error.h"

namespace {

using namespace KPF_TOOL;
using Bytes = std::vector<unsigned char>;

/// What the ToolError that `action` throws says; nothing when it throws none.
template <class Action>
std::string complaintOf(const Action& action, Outcome outcome) {
  try {
    action();
  } catch (const ToolError& error) {
    EXPECT_EQ(error.outcome(), outcome);
    EXPECT_FALSE(error.advice().empty());
    return error.what();
  }
  return "";
}

class Media : public testing::Test {
 protected:
  static constexpr unsigned kWidth = 6, kHeight = 4, kFrames = 3;

  static PictureFormat formatOf(Samples samples, double rate = 50) {
    return {kWidth, kHeight, samples, rate, 0, {}};
  }

  /// Every sample of every frame another one, both bytes of 16 used.
  static Bytes frame(unsigned number, Samples samples) {
    Bytes bytes(kWidth * kHeight * bytesOf(samples));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      bytes[i] = static_cast<unsigned char>(number * 61 + i * 37);
    }
    return bytes;
  }

  void write(const std::string& name, const PictureFormat& format, unsigned frames = kFrames) {
    const auto output = openEncodedOutput({folder_ / name, true, {}}, format);
    for (unsigned n = 0; n < frames; ++n) output->add(frame(n, format.samples).data());
    output->finish();
  }

  static Bytes copied(FrameSource& source) {
    Bytes bytes(source.frameSize());
    source.copyTo(bytes.data(), source.rowSize());
    return bytes;
  }

  TEST_SUPPORT::TemporaryFolder folder_;
};

class LosslessMedia : public Media, public testing::WithParamInterface<const char*> {};

TEST_P(LosslessMedia, GiveBackEverySample) {
  for (const Samples samples : {Samples::k8Bit, Samples::k16Bit}) {
    write(GetParam(), formatOf(samples));
    const auto source = openMedia(folder_ / GetParam(), samples);
    EXPECT_EQ(source->width(), kWidth);
    EXPECT_EQ(source->height(), kHeight);
    for (unsigned n = 0; n < kFrames; ++n) {
      ASSERT_TRUE(source->next()) << n;
      EXPECT_EQ(copied(*source), frame(n, samples)) << n;
    }
    EXPECT_FALSE(source->next());
  }
}

INSTANTIATE_TEST_SUITE_P(All, LosslessMedia,
                         testing::Values("v.mkv", "i_%03d.png", "i_%03d.tif", "i_%03d.tiff"));

/// Every size with a side of up to four pixels, of samples that all differ.
TEST_F(Media, TheSmallestFramesComeBackToo) {
  for (const Samples samples : {Samples::k8Bit, Samples::k16Bit}) {
    for (const char* name : {"v.mkv", "i_%01d.png", "i_%01d.tif"}) {
      for (unsigned size = 0; size < 16; ++size) {
        PictureFormat format = formatOf(samples);
        format.width = size % 4 + 1;
        format.height = size / 4 + 1;
        Bytes pixels = frame(1, samples);
        pixels.resize(format.rowSize() * format.height);
        const auto output = openEncodedOutput({folder_ / name, true, {}}, format);
        output->add(pixels.data());
        output->finish();
        const auto source = openMedia(folder_ / name, samples);
        ASSERT_TRUE(source->next());
        EXPECT_EQ(copied(*source), pixels) << name << format.width << "x" << format.height;
      }
    }
  }
}

class Videos : public Media, public testing::WithParamInterface<const char*> {};

// A time base that is lost on the way makes seconds of frames milliseconds, or hours.
TEST_P(Videos, KeepRateAndTimes) {
  for (const double rate : {1.0, 25.0, 100.0}) {
    write(GetParam(), formatOf(Samples::k8Bit, rate));
    const auto source = openMedia(folder_ / GetParam(), Samples::k8Bit);
    EXPECT_NEAR(source->frameRate(), rate, 0.001 * rate);
    ASSERT_TRUE(source->next());
    const double begin = source->time().value();
    for (unsigned n = 1; n < kFrames; ++n) {
      ASSERT_TRUE(source->next());
      EXPECT_NEAR(source->time().value() - begin, n / rate, 0.0006) << rate;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, Videos, testing::Values("v.mkv", "v.mp4", "v.mov"));

TEST_F(Media, DeepSamplesAreCutWhereFewerBitsAreWanted) {
  write("v.mkv", formatOf(Samples::k16Bit));
  const auto source = openMedia(folder_ / "v.mkv", Samples::k8Bit);
  ASSERT_TRUE(source->next());
  const Bytes deep = frame(0, Samples::k16Bit);
  Bytes upper;
  for (std::size_t i = 1; i < deep.size(); i += 2) upper.push_back(deep[i]);
  EXPECT_EQ(copied(*source), upper);
}

TEST_F(Media, RowsMayStandApart) {
  write("v.mkv", formatOf(Samples::k8Bit));
  const auto source = openMedia(folder_ / "v.mkv", Samples::k8Bit);
  ASSERT_TRUE(source->next());
  Bytes rows(8 * kHeight, 0xA5);
  source->copyTo(rows.data(), 8);
  const Bytes packed = frame(0, Samples::k8Bit);
  for (unsigned y = 0; y < kHeight; ++y) {
    EXPECT_EQ(Bytes(rows.begin() + 8 * y, rows.begin() + 8 * y + 6),
              Bytes(packed.begin() + 6 * y, packed.begin() + 6 * y + 6));
    EXPECT_EQ(rows[8 * y + 6], 0xA5);
    EXPECT_EQ(rows[8 * y + 7], 0xA5);
  }
}

TEST_F(Media, FramesCanBePassedOver) {
  write("v.mkv", formatOf(Samples::k8Bit));
  const auto source = openMedia(folder_ / "v.mkv", Samples::k8Bit);
  source->skip(2);
  ASSERT_TRUE(source->next());
  EXPECT_EQ(copied(*source), frame(2, Samples::k8Bit));
  source->skip(5);
  EXPECT_FALSE(source->next());
}

TEST_F(Media, NobodyPromisesHowManyFramesThereAre) {
  write("v.mkv", formatOf(Samples::k8Bit));
  EXPECT_EQ(openMedia(folder_ / "v.mkv", Samples::k8Bit)->frameCount(), 0U);
}

TEST_F(Media, ImagesAreCountedFromTheNumberGiven) {
  PictureFormat format = formatOf(Samples::k8Bit);
  format.firstNumber = 7;
  write("i_%02d.png", format, 2);
  EXPECT_THAT(TEST_SUPPORT::entriesBelow(folder_.path()),
              testing::ElementsAre("i_07.png", "i_08.png"));
}

TEST_F(Media, OneImageNeedsNoNumber) {
  write("one.png", formatOf(Samples::k8Bit), 1);
  const auto source = openMedia(folder_ / "one.png", Samples::k8Bit);
  ASSERT_TRUE(source->next());
  EXPECT_EQ(copied(*source), frame(0, Samples::k8Bit));
}

TEST_F(Media, WhatIsNoVideoIsUnreadable) {
  TEST_SUPPORT::writeText(folder_ / "text.avi", "this is no video");
  EXPECT_THAT(complaintOf([&] { openMedia(folder_ / "text.avi", Samples::k8Bit); },
                          Outcome::kUnreadableInput),
              testing::HasSubstr("text.avi"));
  EXPECT_THAT(complaintOf([&] { openMedia(folder_ / "none.avi", Samples::k8Bit); },
                          Outcome::kUnreadableInput),
              testing::HasSubstr("No such file"));
}

TEST_F(Media, AnUnknownExtensionIsWrongUsage) {
  const PictureFormat format = formatOf(Samples::k8Bit);
  for (const char* name : {"v.xyz", "v", "mkv"}) {
    EXPECT_THAT(complaintOf(
                    [&] {
                      openEncodedOutput({folder_ / name, false, {}}, format);
                    },
                    Outcome::kWrongUsage),
                testing::HasSubstr("has no extension that is known"));
  }
}

TEST_F(Media, AFolderThatIsNotThereCannotBeWrittenTo) {
  const PictureFormat format = formatOf(Samples::k8Bit);
  EXPECT_THAT(complaintOf(
                  [&] {
                    openEncodedOutput({folder_ / "missing/v.mkv", false, {}}, format);
                  },
                  Outcome::kWriteFailed),
              testing::HasSubstr("cannot write"));
}

}  // namespace

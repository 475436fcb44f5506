#include "tools/kpf/media/grey_picture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using namespace KPF_TOOL;
using Bytes = std::vector<unsigned char>;

constexpr int kWidth = 4, kHeight = 2;

/// A picture of that format all planes of which are full of `byte`.
FramePtr pictureOf(AVPixelFormat format, int byte) {
  FramePtr picture(av_frame_alloc());
  picture->format = format;
  picture->width = kWidth;
  picture->height = kHeight;
  EXPECT_GE(av_frame_get_buffer(picture.get(), 0), 0);
  for (const AVBufferRef* const buffer : picture->buf) {
    if (buffer != nullptr) std::memset(buffer->data, byte, buffer->size);
  }
  return picture;
}

Bytes greyOf(const AVFrame& picture, Samples samples) {
  Bytes out(kWidth * kHeight * bytesOf(samples));
  EXPECT_TRUE(GreyPicture().copy(picture, out.data(), kWidth * bytesOf(samples), samples));
  return out;
}

TEST(GreyPicture, FourteenBitsAreLeftJustified) {
  const Bytes grey = greyOf(*pictureOf(AV_PIX_FMT_GRAY14LE, 0x21), Samples::k16Bit);
  EXPECT_EQ(Bytes(grey.begin(), grey.begin() + 2), (Bytes{0x84, 0x84}));  // 0x2121 << 2
}

TEST(GreyPicture, FormatsNamedForTheirFullRangeHaveIt) {
  EXPECT_EQ(greyOf(*pictureOf(AV_PIX_FMT_YUVJ420P, 100), Samples::k8Bit), Bytes(8, 100));
  EXPECT_EQ(greyOf(*pictureOf(AV_PIX_FMT_YUV420P, 100), Samples::k8Bit), Bytes(8, 98));
}

TEST(GreyPicture, WhatTheScalerMakesGreyHasTheFullRange) {
  for (const int level : {0, 100, 255}) {
    for (const unsigned char grey :
         greyOf(*pictureOf(AV_PIX_FMT_BAYER_RGGB8, level), Samples::k8Bit))
      EXPECT_NEAR(grey, level, 1);
  }
}

TEST(GreyPicture, OfAFormatOfNoPicturesNothingIsMade) {
  Bytes out(8, 0xA5);
  FramePtr picture = pictureOf(AV_PIX_FMT_GRAY8, 100);
  picture->format = AV_PIX_FMT_VAAPI;
  EXPECT_FALSE(GreyPicture().copy(*picture, out.data(), kWidth, Samples::k8Bit));
  EXPECT_EQ(out, Bytes(8, 0xA5));
}

}  // namespace

#include "tools/kpf/analysis/frame_batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace {

using namespace KPF_TOOL;
using Frame = std::vector<unsigned char>;

/// Two pixels a frame; what came out, and in batches of how many.
class Batches : public testing::Test {
 protected:
  void add(FrameBatch& batch, const Frame& frame) {
    std::copy(frame.begin(), frame.end(), batch.place());
    batch.add();
  }
  FrameBatch::Sink sink(std::size_t size) {
    return [this, size](const unsigned char* frames, std::size_t count) {
      for (std::size_t n = 0; n < count; ++n, frames += size)
        out_.emplace_back(frames, frames + size);
      counts_.push_back(count);
    };
  }

  FrameBatch batch_{{2, 1, Samples::k8Bit}, sink(2)};
  std::vector<Frame> out_;
  std::vector<std::size_t> counts_;
};

TEST_F(Batches, SamplesOfTwoBytesAreBridgedAsSuch) {
  FrameBatch batch({2, 1, Samples::k16Bit}, sink(4));
  add(batch, {0xF0, 0x01, 0x20, 0x02});
  batch.addLost();
  add(batch, {0x10, 0x02, 0x60, 0x03});
  batch.finish();
  ASSERT_EQ(out_.size(), 3U);
  EXPECT_EQ(out_[1], (Frame{0x00, 0x02, 0xC0, 0x02}));
}

TEST_F(Batches, AreFullButForTheLast) {
  std::vector<Frame> in;
  for (unsigned char n = 0; n < 35; ++n) {
    in.push_back({n, static_cast<unsigned char>(100 + n)});
    add(batch_, in.back());
  }
  batch_.finish();
  EXPECT_EQ(counts_, (std::vector<std::size_t>{16, 16, 3}));
  EXPECT_EQ(out_, in);
}

TEST_F(Batches, AGapIsBridgedPixelByPixel) {
  add(batch_, {10, 100});
  batch_.addLost();
  batch_.addLost();
  add(batch_, {40, 70});
  batch_.finish();
  EXPECT_EQ(out_, (std::vector<Frame>{{10, 100}, {20, 90}, {30, 80}, {40, 70}}));
}

TEST_F(Batches, AGapMayCrossThem) {
  for (int n = 0; n < 16; ++n) add(batch_, {7, 8});  // a full batch, handed on
  for (int n = 0; n < 9; ++n) batch_.addLost();
  add(batch_, {17, 18});
  batch_.finish();
  ASSERT_EQ(out_.size(), 26U);
  for (unsigned char n = 0; n < 9; ++n) {
    EXPECT_EQ(out_[16U + n],
              (Frame{static_cast<unsigned char>(8 + n), static_cast<unsigned char>(9 + n)}));
  }
}

TEST_F(Batches, AtEitherEndTheNearestFrameHolds) {
  batch_.addLost();
  add(batch_, {1, 2});
  add(batch_, {3, 4});
  batch_.addLost();
  batch_.addLost();
  batch_.finish();
  EXPECT_EQ(out_, (std::vector<Frame>{{1, 2}, {1, 2}, {3, 4}, {3, 4}, {3, 4}}));
}

TEST_F(Batches, LostFramesAloneAreNone) {
  batch_.addLost();
  batch_.finish();
  EXPECT_TRUE(out_.empty());
}

TEST_F(Batches, WhatTheSinkThrowsArrives) {
  FrameBatch batch({2, 1, Samples::k8Bit},
                   [](const unsigned char*, std::size_t) { throw std::runtime_error("full"); });
  add(batch, {1, 2});
  EXPECT_THROW(batch.finish(), std::runtime_error);
}

TEST_F(Batches, SixteenBitsAreMixedAsNumbers) {
  FrameBatch batch({1, 1, Samples::k16Bit}, sink(2));
  add(batch, {0xF0, 0x00});  // 240
  batch.addLost();
  add(batch, {0x10, 0x02});  // 528
  batch.finish();
  EXPECT_EQ(out_[1], (Frame{0x80, 0x01}));  // 384
}

}  // namespace

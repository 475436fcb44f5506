// Frames a handful at a time, without gaps.
#ifndef KPF_FRAME_BATCH_H
#define KPF_FRAME_BATCH_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <vector>

#include "tools/kpf/analysis/picture.h"

namespace KPF_TOOL {

/**
 * Collects frames and hands them on several at a time, so that what looks at each pixel over time
 * need not walk through its sums for every frame.
 *
 * Lost frames are bridged as a waveform does it: pixel by pixel by the straight line between the
 * frames beside the gap, at either end by the nearest one.
 */
class FrameBatch {
 public:
  static constexpr std::size_t kFrames = 16;

  /// Takes `count` frames, at most kFrames, one behind the other. Is called from a thread of its
  /// own, one call after the other, while the next frames are collected.
  using Sink = std::function<void(const unsigned char* frames, std::size_t count)>;

  FrameBatch(const PictureLayout& layout, Sink sink);
  ~FrameBatch();
  FrameBatch(const FrameBatch&) = delete;
  FrameBatch& operator=(const FrameBatch&) = delete;

  /// Where the next frame is to be written before add() is called.
  unsigned char* place() { return frames_.data() + held_ * size_; }
  /// @throws what the sink threw over frames before.
  void add();
  void addLost();
  /// Hands on what is left, and waits until it is taken. Lost frames alone are none.
  void finish();

 private:
  void push();
  void handOn();
  void bridge(const unsigned char* before, const unsigned char* after);

  PictureLayout layout_;
  std::size_t size_;  // bytes of a frame
  Sink sink_;
  std::vector<unsigned char> frames_;  // that are collected
  std::vector<unsigned char> handed_;  // that the sink works on
  std::future<void> work_;
  std::size_t held_ = 0;
  bool any_ = false;                   // whether a frame came before
  std::uint64_t gap_ = 0;              // frames that were lost since
  std::vector<unsigned char> before_;  // the frame before the gap
};

}  // namespace KPF_TOOL

#endif

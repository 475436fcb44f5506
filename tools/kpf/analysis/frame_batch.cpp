#include "tools/kpf/analysis/frame_batch.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace KPF_TOOL {
namespace {

unsigned sampleAt(const unsigned char* frame, std::size_t i, Samples samples) {
  if (samples == Samples::k8Bit) return frame[i];
  return frame[2 * i] | static_cast<unsigned>(frame[2 * i + 1]) << 8;
}

/// The sample that lies `part` of the way from one to the other.
unsigned mixed(unsigned from, unsigned to, double part) {
  return static_cast<unsigned>(std::lround(from + part * (static_cast<double>(to) - from)));
}

}  // namespace

FrameBatch::FrameBatch(const PictureLayout& layout, Sink sink)
    : layout_(layout),
      size_(layout.frameSize()),
      sink_(std::move(sink)),
      frames_(size_ * kFrames),
      handed_(size_ * kFrames) {}

FrameBatch::~FrameBatch() {
  if (work_.valid()) work_.wait();
}

void FrameBatch::add() {
  if (gap_ > 0) {
    const std::vector<unsigned char> after(place(), place() + size_);
    bridge(any_ ? before_.data() : after.data(), after.data());
    std::copy(after.begin(), after.end(), place());
  }
  any_ = true;
  push();
}

void FrameBatch::addLost() {
  // The frame before still stands where it was written: nothing has come since.
  if (gap_++ > 0 || !any_) return;
  const auto& batch = held_ > 0 ? frames_ : handed_;
  const std::size_t last = held_ > 0 ? held_ - 1 : kFrames - 1;
  before_.assign(batch.data() + last * size_, batch.data() + (last + 1) * size_);
}

void FrameBatch::finish() {
  if (any_) bridge(before_.data(), before_.data());
  if (held_ > 0) handOn();
  if (work_.valid()) work_.get();
}

void FrameBatch::push() {
  if (++held_ == kFrames) handOn();
}

void FrameBatch::handOn() {
  if (work_.valid()) work_.get();
  std::swap(frames_, handed_);
  work_ = std::async(std::launch::async, sink_, handed_.data(), std::exchange(held_, 0));
}

void FrameBatch::bridge(const unsigned char* before, const unsigned char* after) {
  for (std::uint64_t lost = 1; lost <= gap_; ++lost) {
    const double part = static_cast<double>(lost) / static_cast<double>(gap_ + 1);
    unsigned char* out = place();
    for (std::size_t i = 0; i < layout_.pixelCount(); ++i) {
      const unsigned sample =
          mixed(sampleAt(before, i, layout_.samples), sampleAt(after, i, layout_.samples), part);
      *out++ = static_cast<unsigned char>(sample);
      if (layout_.samples == Samples::k16Bit) *out++ = static_cast<unsigned char>(sample >> 8);
    }
    push();
  }
  gap_ = 0;
}

}  // namespace KPF_TOOL

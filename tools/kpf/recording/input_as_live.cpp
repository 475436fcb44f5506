#include "tools/kpf/recording/input_as_live.h"

#include <algorithm>
#include <chrono>

#include "tools/kpf/frames/samples.h"
#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

constexpr std::uint64_t kFirstId = std::uint64_t{1} << 32;  // ids of 64 bits never begin again

std::uint64_t now() {
  using namespace std::chrono;
  return static_cast<std::uint64_t>(
      duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count());
}

}  // namespace

InputAsLive::InputAsLive(FrameSource& input, int bits, const Timeline& timeline)
    : input_(input),
      bits_(static_cast<unsigned>(bits)),
      timeline_(timeline),
      stride_(paddedRow(input.rowSize())),
      image_(stride_ * input.height()),
      record_(vxGetPackedSize(input.width(), input.height(), bits_)) {}

LiveFrame InputAsLive::next() {
  LiveFrame frame;
  if (begun_ && !input_.next()) {
    frame.state = LiveFrame::State::kEnd;
    return frame;
  }
  begun_ = true;
  frame.arrival = now();
  const auto time = input_.time();
  frame.id = kFirstId + timeline_.placeOf(time);
  if (time) frame.cameraTime = 1 + static_cast<std::uint64_t>(std::max(*time, 0.0) * 1e9);
  frame.state = LiveFrame::State::kIncomplete;
  if (input_.lost()) return frame;
  frame.state = LiveFrame::State::kGood;
  input_.copyTo(image_.data(), stride_);
  vxConvertTiffImageData(image_.data(), record_.data(), 0, input_.width(), input_.height(), bits_);
  frame.record = record_.data();
  return frame;
}

}  // namespace KPF_TOOL

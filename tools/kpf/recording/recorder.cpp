#include "tools/kpf/recording/recorder.h"

#include <algorithm>

#include "tools/kpf/frames/samples.h"

namespace KPF_TOOL {

Recorder::Recorder(FrameSource& input, RecordStream& stream, std::uint64_t frames,
                   const Timeline& timeline)
    : input_(input),
      stream_(stream),
      frames_(frames),
      timeline_(timeline),
      stride_(paddedRow(input.rowSize())),
      image_(stride_ * input.height()) {}

// The first frame is there already: a recording of no frames, in the place of an older one, is
// nothing that anybody wanted when they stopped.
void Recorder::run(const std::function<bool()>& stop,
                   const std::function<void(std::uint64_t)>& progress) {
  do {
    fillUpTo(timeline_.placeOf(input_.time()), stop);
    if (written_ == frames_ || (written_ > 0 && stop())) return;
    addFrame();
    progress(written_);
  } while (written_ < frames_ && !stop() && input_.next());
}

/// A frame that is not what the camera saw is worse than none.
void Recorder::addFrame() {
  ++written_;
  if (input_.lost()) {
    ++damaged_;
    ++placeholders_;
    stream_.addPlaceholder();
    return;
  }
  input_.copyTo(image_.data(), stride_);
  stream_.addImage(image_.data());
}

/// A gap that reaches beyond the last frame fills the stream.
void Recorder::fillUpTo(std::uint64_t place, const std::function<bool()>& stop) {
  for (; written_ < std::min(place, frames_) && !stop(); ++written_, ++placeholders_) {
    stream_.addPlaceholder();
  }
}

}  // namespace KPF_TOOL

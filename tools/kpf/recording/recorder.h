// The loop that turns frames into records.
#ifndef KPF_RECORDER_H
#define KPF_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/recording/timeline.h"

namespace KPF_TOOL {

/// Feeds a stream with what a source gives, and knows nothing else of either, until it is full, the
/// input ends, or somebody wants it to stop.
class Recorder {
 public:
  /// @param input stands on its first frame.
  /// @param frames to record at most.
  Recorder(FrameSource& input, RecordStream& stream, std::uint64_t frames,
           const Timeline& timeline);

  /// @param stop asked before each record but the first, which is there already.
  /// @param progress told the records written, after each frame.
  void run(const std::function<bool()>& stop, const std::function<void(std::uint64_t)>& progress);

  /// Frames and placeholders.
  std::uint64_t written() const { return written_; }
  std::uint64_t placeholders() const { return placeholders_; }
  /// Those of the placeholders that stand for damaged frames.
  std::uint64_t damaged() const { return damaged_; }
  /// What became of the input's times.
  const Timeline& timeline() const { return timeline_; }

 private:
  void fillUpTo(std::uint64_t place, const std::function<bool()>& stop);
  void addFrame();

  FrameSource& input_;
  RecordStream& stream_;
  std::uint64_t frames_;
  Timeline timeline_;
  std::size_t stride_;  // bytes from row to row, as the stream wants them
  std::vector<unsigned char> image_;
  std::uint64_t written_ = 0;
  std::uint64_t placeholders_ = 0;
  std::uint64_t damaged_ = 0;
};

}  // namespace KPF_TOOL

#endif

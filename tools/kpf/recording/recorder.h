// The loop that turns frames into records.
#ifndef KPF_RECORDER_H
#define KPF_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "format/kpf_frame_count.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/recording/timeline.h"
#include "vlm_internal.h"

namespace KPF_TOOL {

/// What a recorder needs of a stream.
class RecordStream {
 public:
  virtual ~RecordStream() = default;
  /// @param image rows padded to a multiple of 4 bytes.
  virtual void addImage(const unsigned char* image) = 0;
  /// A frame that is not there keeps its place.
  virtual void addPlaceholder() = 0;
};

/// A stream of the library that is closed whatever happens.
class LibraryStream : public RecordStream {
 public:
  /// To be announced where the number of frames shows only in the end, see announce.
  static constexpr unsigned kFramesUnknown = KPF_FORMAT::kFrameCountUnknown;

  LibraryStream(const std::string& name,
                const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration);
  ~LibraryStream() override { close(); }
  LibraryStream(const LibraryStream&) = delete;
  LibraryStream& operator=(const LibraryStream&) = delete;

  /// False where the library could not begin it, and has logged why.
  bool isOpen() const { return handle_ != 0; }
  void addImage(const unsigned char* image) override;
  void addPlaceholder() override;
  void close();

  /// Once it is closed: makes the header as if `frames` had been announced from the beginning.
  /// @param whole nothing is missing of them, so no status file should stay.
  /// @return false when the header cannot be written.
  bool announce(std::uint64_t frames, bool whole) const;

 private:
  std::string name_;
  unsigned handle_;
};

/// Feeds a stream with what a source gives, and knows nothing else of either, until it is full, the
/// input ends, or somebody wants it to stop.
class Recorder {
 public:
  /// @param input stands on its first frame.
  /// @param frames to record at most.
  Recorder(FrameSource& input, RecordStream& stream, std::uint64_t frames,
           const Timeline& timeline);

  /// @param stop asked before each record.
  /// @param progress told the records written, after each frame.
  void run(const std::function<bool()>& stop, const std::function<void(std::uint64_t)>& progress);

  /// Frames and placeholders.
  std::uint64_t written() const { return written_; }
  std::uint64_t placeholders() const { return placeholders_; }
  /// Those of the placeholders that stand for damaged frames.
  std::uint64_t damaged() const { return damaged_; }

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

// The loop that turns frames into records.
#ifndef KPF_RECORDER_H
#define KPF_RECORDER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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

 private:
  unsigned handle_;
};

/// Feeds a stream until it is full, the input ends, or somebody wants it to stop.
class Recorder {
 public:
  /// @param frames that the stream takes.
  Recorder(FrameSource& input, RecordStream& stream, std::uint64_t frames,
           const Timeline& timeline);

  /// @param stop asked before each frame of the input.
  /// @param progress told the records written, after each frame.
  void run(const std::function<bool()>& stop, const std::function<void(std::uint64_t)>& progress);

  /// Frames and placeholders.
  std::uint64_t written() const { return written_; }
  std::uint64_t placeholders() const { return placeholders_; }

 private:
  void fillUpTo(std::uint64_t place);

  FrameSource& input_;
  RecordStream& stream_;
  std::uint64_t frames_;
  Timeline timeline_;
  std::size_t stride_;  // bytes from row to row, as the stream wants them
  std::vector<unsigned char> image_;
  std::uint64_t written_ = 0;
  std::uint64_t placeholders_ = 0;
};

}  // namespace KPF_TOOL

#endif

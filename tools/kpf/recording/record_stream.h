// Where records go.
#ifndef KPF_RECORD_STREAM_H
#define KPF_RECORD_STREAM_H

#include <cstdint>
#include <optional>
#include <string>

#include "format/kpf_frame_count.h"
#include "tools/kpf/files/file_system.h"
#include "vlm_internal.h"

namespace KPF_TOOL {

/// Pixels of a row or column that a recording takes: its header has 16 bits for each.
constexpr unsigned kLongestSide = 0xFFFF;

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
  /// @param record header and pixels, as they are to be on disk.
  void addRecord(const unsigned char* record);
  void close();

  /// Whether its header still has its name, and not another recording.
  bool isThere() const { return id_ && fileId(name_) == id_; }

  /// Once it is closed: makes the header as if `frames` had been announced from the beginning.
  /// @param whole nothing is missing of them, so no status file should stay.
  /// @return false when the header is gone or cannot be written.
  bool announce(std::uint64_t frames, bool whole) const;

 private:
  std::string name_;
  unsigned handle_;
  std::optional<FileId> id_;  // of its header
};

}  // namespace KPF_TOOL

#endif

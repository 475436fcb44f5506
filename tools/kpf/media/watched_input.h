// The bytes of an input on their way to FFmpeg, some of which are looked at again.
#ifndef KPF_WATCHED_INPUT_H
#define KPF_WATCHED_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {

/**
 * A file or a pipe that keeps its beginning and its end in mind: most containers say in one of the
 * two how long they are to be, and a pipe gives them only once.
 */
class WatchedInput {
 public:
  static constexpr std::size_t kHead = 4096;
  static constexpr std::size_t kTail = 1 << 18;  // holds four of the largest pages of Ogg

  WatchedInput() = default;
  WatchedInput(const WatchedInput&) = delete;
  WatchedInput& operator=(const WatchedInput&) = delete;

  /// @return 0 or FFmpeg's error. @param interrupt must live as long.
  int open(const std::string& url, const AVIOInterruptCB& interrupt);

  /// For FFmpeg to read from; null before it is open.
  AVIOContext* io() const { return io_.get(); }
  bool isPipe() const { return !(source_->seekable & AVIO_SEEKABLE_NORMAL); }

  /// The first bytes that FFmpeg has read.
  const std::string& head() const { return head_; }
  /// How many bytes there are: of a pipe those that have come, and 0 where none was opened.
  std::uint64_t size() const;
  /// The bytes from `offset` on, kTail of them at most; none where a pipe's are forgotten.
  std::string from(std::uint64_t offset) const;
  /// The last ones.
  std::string tail() const { return from(size() - std::min<std::uint64_t>(size(), kTail)); }

 private:
  static int read(void* self, std::uint8_t* into, int size);
  static std::int64_t seek(void* self, std::int64_t offset, int whence);
  void note(const std::uint8_t* bytes, std::size_t count);

  struct CloseSource {
    void operator()(AVIOContext* io) const { avio_close(io); }
  };
  struct FreeIo {
    void operator()(AVIOContext* io) const {
      av_freep(&io->buffer);
      avio_context_free(&io);
    }
  };

  std::unique_ptr<AVIOContext, CloseSource> source_;
  std::unique_ptr<AVIOContext, FreeIo> io_;
  std::uint64_t position_ = 0;  // of the next byte that is read
  std::string head_;
  std::string tail_;  // of a pipe, up to twice as many as are wanted
};

}  // namespace KPF_TOOL

#endif

// The container that frames are read from.
#ifndef KPF_MEDIA_FILE_H
#define KPF_MEDIA_FILE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/media/ffmpeg.h"
#include "tools/kpf/media/ffmpeg_log.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/media/watched_input.h"

namespace KPF_TOOL {

/// What to do where a pipe brings nothing that can be decoded.
constexpr const char* kPipeAdvice =
    "MP4 and MOV cannot be piped, give the file itself; of bare frames say what they are by --raw.";

/**
 * A file, images, a camera or a pipe, read packet by packet.
 *
 * What is opened is what the user named, once, and nothing else: what a play list names stays shut,
 * be it in the network or on this disk.
 */
class MediaFile {
 public:
  /// @throws ToolError when it cannot be opened or holds no video.
  MediaFile(const std::string& name, const MediaHints& hints);

  const AVStream& stream() const { return *format_->streams[stream_]; }
  const AVCodec& codec() const { return *codec_; }
  /// Frames per second, 0 when nobody says.
  double frameRate() const { return frameRate_; }

  /// What a player does to the video, or would show instead of it: a line each.
  std::vector<std::string> remarks() const;

  /// The next packet of the video; false at the end.
  bool read(AVPacket& packet);

  /// At the end: why it is not that of the input.
  const std::string& trouble() const { return trouble_; }

 private:
  void open();
  void allow(AVFormatContext& format);
  void findVideo();
  void note(const AVPacket& packet);
  void noteEnd(int result);
  const char* tornPart() const;
  std::string earlyEnd() const;
  std::string missingPart() const;

  std::string name_;
  MediaHints hints_;
  LogCounts before_;    // what FFmpeg's log had said when this was opened
  WatchedInput input_;  // outlives the format that reads from it
  InputPtr format_;
  const AVCodec* codec_ = nullptr;
  int stream_ = -1;  // of the container's streams, the one that is decoded
  double frameRate_ = 0;
  std::uint64_t packets_ = 0;
  std::uint64_t pictures_ = 0;  // the most that a packet holds, where more than one is left out
  std::uint64_t images_ = 0;    // numbers from the first image to the last; 0 for anything else
  double end_ = 0;              // of the latest packet of any stream, in seconds
  std::int64_t bytes_ = 0;      // up to the end of the latest packet
  std::int64_t newest_ = -1;    // where the latest packet begins; -1 where nobody knows
  std::string trouble_;
};

}  // namespace KPF_TOOL

#endif

// Packets to frames, with an eye on what goes wrong on the way.
#ifndef KPF_DECODER_H
#define KPF_DECODER_H

#include <cstdint>
#include <functional>
#include <set>

#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {

/**
 * Decodes one stream, and keeps the place of every frame that is damaged.
 *
 * FFmpeg tells of damage in three ways: by a result, by a mark on the frame that it mended, or, for
 * many formats, by no more than a line in its log. All three count. So that a line can be told to
 * belong to a packet, frames are decoded one after the other, each on all cores where its format
 * allows.
 */
class Decoder {
 public:
  /// Fills an empty packet; false when there are no more.
  using NextPacket = std::function<bool(AVPacket&)>;

  Decoder(const AVCodec& codec, const AVCodecParameters& parameters, NextPacket nextPacket);

  /// What FFmpeg said to the codec and its parameters: 0 or an error.
  int status() const { return status_; }
  const AVCodecContext& context() const { return *codec_; }

  /// Goes on to the next frame in the order in which they are shown; false at the end.
  bool next();

  /// Whether the present frame could not be decoded as it was encoded, or not at all.
  bool isDamaged() const { return damaged_; }
  /// Packets whose decoding went wrong, of frames that came out all the same and tell no time:
  /// which they are nobody knows.
  std::uint64_t unplacedDamage() const { return unplaced_; }
  /// When the present frame is shown, or AV_NOPTS_VALUE.
  std::int64_t time() const { return time_; }
  /// The present frame; a neighbour of it, or an empty one, where it could not be decoded.
  const AVFrame& frame() const { return *frame_; }

 private:
  bool decode();
  void feed();
  void watch(int result, std::uint64_t errorsBefore);
  bool nextIsLost();

  NextPacket nextPacket_;
  CodecPtr codec_;
  PacketPtr packet_;
  FramePtr frame_;
  int status_;
  bool marksDamage_;          // on the frames; its log then says more than is wrong
  bool waiting_ = false;      // frame_ is decoded, but lost ones come first
  bool packetCounts_ = true;  // the latest packet holds a frame that is to be shown
  std::int64_t packetTime_ = AV_NOPTS_VALUE;
  std::set<std::int64_t> spoilt_;  // times of packets whose decoding went wrong
  std::uint64_t untimed_ = 0;      // lost frames of packets without a time
  std::uint64_t unplaced_ = 0;
  bool damaged_ = false;
  std::int64_t time_ = AV_NOPTS_VALUE;
};

}  // namespace KPF_TOOL

#endif

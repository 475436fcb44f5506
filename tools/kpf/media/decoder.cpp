#include "tools/kpf/media/decoder.h"

#include <limits>
#include <utility>

#include "tools/kpf/media/ffmpeg_log.h"

namespace KPF_TOOL {
namespace {

/// Formats with frames out of order have decoders that mend and mark; that of HEVC only logs.
bool marksDamage(const AVCodec& codec) {
  const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec.id);
  return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_REORDER) != 0 &&
         codec.id != AV_CODEC_ID_HEVC;
}

std::int64_t firstKnown(std::int64_t shown, std::int64_t decoded) {
  return shown != AV_NOPTS_VALUE ? shown : decoded;
}

}  // namespace

Decoder::Decoder(const AVCodec& codec, const AVCodecParameters& parameters, NextPacket nextPacket)
    : nextPacket_(std::move(nextPacket)),
      codec_(avcodec_alloc_context3(&codec)),
      packet_(av_packet_alloc()),
      frame_(av_frame_alloc()),
      marksDamage_(marksDamage(codec)) {
  listenToFFmpeg();
  avcodec_parameters_to_context(codec_.get(), &parameters);
  codec_->thread_count = 0;  // as many as there are cores
  codec_->thread_type = FF_THREAD_SLICE;
  codec_->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER;
  status_ = avcodec_open2(codec_.get(), &codec, nullptr);
}

bool Decoder::next() {
  if (!waiting_) waiting_ = decode();
  if (nextIsLost()) return damaged_ = true;
  if (!waiting_) return false;
  waiting_ = false;
  time_ = frame_->best_effort_timestamp;
  const bool spoilt = spoilt_.erase(firstKnown(frame_->pts, frame_->pkt_dts)) > 0;
  damaged_ = spoilt || frame_->decode_error_flags != 0 || (frame_->flags & AV_FRAME_FLAG_CORRUPT);
  return true;
}

/// A frame that never came out stands before the first one that is shown later.
bool Decoder::nextIsLost() {
  time_ = AV_NOPTS_VALUE;
  if (untimed_ > 0) {
    --untimed_;
    return true;
  }
  const std::int64_t until = waiting_ ? firstKnown(frame_->pts, frame_->pkt_dts)
                                      : std::numeric_limits<std::int64_t>::max();
  if (spoilt_.empty() || *spoilt_.begin() >= until) return false;
  time_ = *spoilt_.begin();
  spoilt_.erase(spoilt_.begin());
  return true;
}

bool Decoder::decode() {
  for (;;) {
    const std::uint64_t before = logCounts().errors;
    const int result = avcodec_receive_frame(codec_.get(), frame_.get());
    if (result == AVERROR_EOF) return false;
    if (result == AVERROR(EAGAIN)) {
      feed();
      continue;
    }
    watch(result, before);
    if (result == 0) return true;
  }
}

void Decoder::feed() {
  if (!nextPacket_(*packet_)) {
    // After the last packet the decoder gives what it still holds back.
    avcodec_send_packet(codec_.get(), nullptr);
    return;
  }
  packetTime_ = firstKnown(packet_->pts, packet_->dts);
  packetCounts_ = !(packet_->flags & AV_PKT_FLAG_DISCARD);
  const bool torn = (packet_->flags & AV_PKT_FLAG_CORRUPT) != 0;
  const std::uint64_t before = logCounts().errors;
  const int result = avcodec_send_packet(codec_.get(), packet_.get());
  av_packet_unref(packet_.get());
  watch(torn ? AVERROR_INVALIDDATA : result, before);
}

void Decoder::watch(int result, std::uint64_t errorsBefore) {
  const bool complained = !marksDamage_ && logCounts().errors != errorsBefore;
  if (!packetCounts_ || (result >= 0 && !complained)) return;
  if (packetTime_ != AV_NOPTS_VALUE) {
    spoilt_.insert(packetTime_);
  } else if (result < 0) {
    ++untimed_;
  } else {
    ++unplaced_;
  }
}

}  // namespace KPF_TOOL

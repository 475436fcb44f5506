#include "tools/kpf/frames/recorded_frames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "kpf_reader.h"
#include "tools/kpf/records/record_walk.h"

namespace KPF_TOOL {
namespace {

using KPF_READER::Recording;

/// Rows of the reader's 16-bit samples, as they are or only their high bytes.
void copySamples(const std::vector<std::uint16_t>& in, Samples samples, std::size_t width,
                 unsigned char* out, std::size_t stride) {
  for (std::size_t i = 0; i < in.size(); out += stride) {
    unsigned char* byte = out;
    for (const std::size_t end = i + width; i < end; ++i) {
      if (samples == Samples::k16Bit) *byte++ = static_cast<unsigned char>(in[i]);
      *byte++ = static_cast<unsigned char>(in[i] >> 8);
    }
  }
}

class RecordedFrames : public FrameSource {
 public:
  RecordedFrames(const std::string& name, Samples samples)
      : recording_(name), records_(recording_), samples_(samples) {}

  unsigned width() const override { return recording_.header().width; }
  unsigned height() const override { return recording_.header().height; }
  Samples samples() const override { return samples_; }
  double frameRate() const override {
    return recording_.header().hasFrameRate() ? recording_.header().frameRate : 0;
  }
  std::uint64_t frameCount() const override { return records_.places(); }

  std::vector<std::string> remarks() const override {
    if (!recording_.header().packed12 || width() % 2 == 0) return {};
    return {fmt::format("the last of {} columns is black: 12 bits have no room for it", width())};
  }

  bool next() override {
    if (next_ >= records_.places()) return false;
    present_ = records_.at(static_cast<std::uint32_t>(next_++));
    return true;
  }

  std::optional<double> time() const override {
    if (lost()) return std::nullopt;
    return static_cast<double>(present_->seconds) + present_->microseconds / 1e6;
  }

  bool lost() const override { return !present_ || present_->placeholder; }

  std::string flaw() const override {
    const std::string text = records_.flaw();
    const std::string end = next_ >= records_.places() ? records_.wrongEnd() : "";
    return text.empty() || end.empty() ? text + end : text + ", " + end;
  }

  void copyTo(unsigned char* out, std::size_t stride) override {
    if (lost()) {
      for (unsigned y = 0; y < height(); ++y) std::fill_n(out + y * stride, rowSize(), 0);
    } else if (samples_ == Samples::k8Bit && !recording_.header().packed12) {
      copyPixels(out, stride);
    } else {
      // Only now that a frame is there: a header alone may claim any size.
      unpacked_.resize(recording_.header().pixelCount());
      KPF_READER::unpackPixels(recording_.header(), present_->pixels, unpacked_);
      copySamples(unpacked_, samples_, width(), out, stride);
    }
  }

  void skip(std::uint64_t frames) override { next_ += frames; }

  bool back() override {
    if (next_ < 2) return false;
    next_ -= 2;
    return next();
  }

 private:
  /// What is stored a byte a pixel needs no detour over 16 bits.
  void copyPixels(unsigned char* out, std::size_t stride) const {
    for (unsigned y = 0; y < height(); ++y) {
      const auto row = present_->pixels.subspan(std::size_t{y} * width(), width());
      std::copy(row.begin(), row.end(), out + y * stride);
    }
  }

  Recording recording_;
  RecordWalk records_;
  Samples samples_;
  std::vector<std::uint16_t> unpacked_;
  std::uint64_t next_ = 0;         // may lie far behind the end, so wider than a record's number
  std::optional<Record> present_;  // the frame that next() went on to
};

}  // namespace

std::unique_ptr<FrameSource> openRecording(const std::string& name, Samples samples) {
  return std::make_unique<RecordedFrames>(name, samples);
}

Samples samplesOf(const std::string& recording) {
  const Recording opened(recording, KPF_READER::Access::kSparse);
  return opened.header().packed12 ? Samples::k16Bit : Samples::k8Bit;
}

}  // namespace KPF_TOOL

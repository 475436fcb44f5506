#include "tools/kpf/frames/frame_source.h"

#include <algorithm>
#include <vector>

#include "kpf_reader.h"

namespace KPF_TOOL {
namespace {

using KPF_READER::Recording;

class RecordedFrames : public FrameSource {
 public:
  RecordedFrames(const std::string& name, Samples samples)
      : recording_(name), samples_(samples), unpacked_(recording_.header().pixelCount()) {}

  unsigned width() const override { return recording_.header().width; }
  unsigned height() const override { return recording_.header().height; }
  double frameRate() const override { return recording_.header().frameRate; }
  std::uint64_t frameCount() const override { return recording_.recordCount(); }

  bool next(unsigned char* rows) override {
    if (next_ >= recording_.recordCount()) return false;
    const auto n = static_cast<std::uint32_t>(next_++);
    if (samples_ == Samples::k8Bit && !recording_.header().packed12) {
      const auto record = recording_.record(n);
      std::copy(record.pixels.begin(), record.pixels.end(), rows);
      return true;
    }
    recording_.unpack(n, unpacked_);
    for (const std::uint16_t sample : unpacked_) {
      if (samples_ == Samples::k16Bit) *rows++ = static_cast<unsigned char>(sample);
      *rows++ = static_cast<unsigned char>(sample >> 8);
    }
    return true;
  }

  void skip(std::uint64_t frames) override { next_ += frames; }

 private:
  Recording recording_;
  Samples samples_;
  std::vector<std::uint16_t> unpacked_;
  std::uint64_t next_ = 0;
};

class MediaFrames : public FrameSource {
 public:
  MediaFrames(const std::string& name, Samples samples) : input_(name, samples) {}

  unsigned width() const override { return input_.width(); }
  unsigned height() const override { return input_.height(); }
  double frameRate() const override { return input_.frameRate(); }
  std::uint64_t frameCount() const override { return 0; }

  bool next(unsigned char* rows) override {
    if (!input_.next()) return false;
    input_.copyTo(rows, width() * bytesOf(input_.samples()));
    return true;
  }

  void skip(std::uint64_t frames) override {
    while (frames > 0 && input_.next()) --frames;
  }

 private:
  MediaInput input_;
};

}  // namespace

std::unique_ptr<FrameSource> openFrames(const std::string& name, Samples samples) {
  if (name.ends_with(".kpf")) return openRecording(name, samples);
  return std::make_unique<MediaFrames>(name, samples);
}

std::unique_ptr<FrameSource> openRecording(const std::string& name, Samples samples) {
  return std::make_unique<RecordedFrames>(name, samples);
}

Samples samplesOf(const std::string& recording) {
  const Recording opened(recording, KPF_READER::Access::kSparse);
  return opened.header().packed12 ? Samples::k16Bit : Samples::k8Bit;
}

}  // namespace KPF_TOOL

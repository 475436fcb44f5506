#include "tools/kpf/view/frames_answer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tools/kpf/view/numbers.h"
#include "tools/kpf/view/screen_picture.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kHead = 64;
constexpr std::uint32_t kMostFrames = 64;                    // in one answer
constexpr std::size_t kKinds = 4;                            // of pictures
constexpr std::size_t kEnoughBytes = std::size_t{32} << 20;  // after which an answer ends early

/// What one request wants of every frame.
struct Wanted {
  Wanted(const Request& request, const KPF_READER::Header& header, const std::string& path)
      : cutout(cutoutOf(textOf(request, "cut"), header.width, header.height)),
        amplification{path, numberOf(request, "frequency", 1), numberOf(request, "gain", 4),
                      textOf(request, "way", "library") == "clean", false} {
    const std::string tones = textOf(request, "tone");
    if (!tones.empty()) {
      const auto values = numbersOf(tones, 3);
      tone.emplace(values[0], values[1], std::clamp(values[2], 0.1, 10.0));
    }
    std::string names = textOf(request, "pictures", "original") + ',';
    for (std::size_t end = 0; (end = names.find(',')) != std::string::npos;
         names.erase(0, end + 1)) {
      pictures.push_back(names.substr(0, end));
    }
    const auto wants = [this](const auto& what) {
      return std::any_of(pictures.begin(), pictures.end(), what);
    };
    amplifies = wants([](const std::string& name) { return name != "original"; });
    amplification.marked = wants([](const std::string& name) { return name == "marks"; });
  }

  Cutout cutout;
  Amplification amplification;
  std::optional<Tone> tone;  // nothing where true samples are wanted
  std::vector<std::string> pictures;
  bool amplifies = false;
};

class Answerer {
 public:
  Answerer(const Wanted& wanted, ShownRecording& recording, LiveAmplifier& amplifier)
      : wanted_(wanted), header_(recording.header()), frames_(recording), amplifier_(amplifier) {}

  void add(std::uint32_t place) {
    const ShownFrame frame = frames_.at(place);
    const std::size_t head = out_.size();
    out_.resize(head + kHead);
    AmplifiedPictures made;
    std::uint32_t pictures = 0;
    if (frame.state == FrameState::kThere) {
      if (wanted_.amplifies) made = amplifier_.at(wanted_.amplification, place);
      for (const std::string& name : wanted_.pictures) pictures += addPicture(name, frame, made);
    }
    writeHead(head, frame, made, pictures);
  }

  /// Makes room for so many frames at once: growing would copy all of those before.
  void expect(std::uint32_t frames) {
    const Cutout& cut = wanted_.cutout;
    const std::size_t pixels =
        wanted_.tone ? std::size_t{cut.outWidth} * cut.outHeight : header_.pixelCount();
    const std::size_t frame =
        kHead + std::min(wanted_.pictures.size(), kKinds) * pixels * bytesOfSample();
    out_.reserve(std::min(frames * frame, kEnoughBytes + frame));
  }

  std::uint32_t places() const { return frames_.places(); }
  std::size_t size() const { return out_.size(); }
  std::vector<unsigned char> take() { return std::move(out_); }

 private:
  bool trueSamples() const { return !wanted_.tone && !wanted_.amplifies; }
  std::uint32_t bytesOfSample() const { return trueSamples() && header_.packed12 ? 2 : 1; }

  unsigned addPicture(const std::string& name, const ShownFrame& frame,
                      const AmplifiedPictures& made) {
    if (name == "original") {
      addOriginal(frame);
    } else if (name == "reference") {
      addBytes(*made.reference);
    } else if (name == "amplified") {
      addBytes(*made.amplified);
    } else if (name == "marks") {
      appendMarks(out_, *made.marks, header_.width, wanted_.cutout);
    } else {
      return 0;
    }
    return 1;
  }

  /// Beside amplified pictures the original has 8 bits like them.
  void addOriginal(const ShownFrame& frame) {
    const auto pixels = frame.record.pixels;
    if (!header_.packed12) return addBytes(pixels);
    unpacked_.resize(header_.pixelCount());
    KPF_READER::unpackPixels(header_, pixels, unpacked_);
    if (wanted_.tone) {
      appendShown(out_, unpacked_, header_.width, wanted_.cutout, *wanted_.tone);
    } else if (wanted_.amplifies) {
      for (const std::uint16_t sample : unpacked_) {
        out_.push_back(static_cast<unsigned char>(sample >> 8));
      }
    } else {
      const auto* const bytes = reinterpret_cast<const unsigned char*>(unpacked_.data());
      out_.insert(out_.end(), bytes, bytes + unpacked_.size() * sizeof(std::uint16_t));
    }
  }

  void addBytes(std::span<const unsigned char> samples) {
    if (wanted_.tone) {
      appendShown(out_, samples, header_.width, wanted_.cutout, *wanted_.tone);
    } else {
      out_.insert(out_.end(), samples.begin(), samples.end());
    }
  }

  void writeHead(std::size_t at, const ShownFrame& frame, const AmplifiedPictures& made,
                 std::uint32_t pictures) {
    const auto put = [&](std::uint64_t value, unsigned bytes) {
      for (unsigned i = 0; i < bytes; ++i) {
        out_[at++] = static_cast<unsigned char>(value >> (8 * i));
      }
    };
    const bool whole = !wanted_.tone;
    put(frame.record.place, 4);
    put(static_cast<std::uint32_t>(frame.state), 4);
    put(frame.record.sequenceNumber, 4);
    put(frame.record.microseconds, 4);
    put(static_cast<std::uint64_t>(frame.record.seconds), 8);
    put(whole ? header_.width : wanted_.cutout.outWidth, 4);
    put(whole ? header_.height : wanted_.cutout.outHeight, 4);
    put(bytesOfSample(), 4);
    put(pictures, 4);
    put(made.wraps, 4);
    put(made.clips, 4);
    put(made.windowFull ? 1 : 0, 4);
  }

  const Wanted& wanted_;
  const KPF_READER::Header& header_;
  ShownFrames frames_;
  LiveAmplifier& amplifier_;
  std::vector<std::uint16_t> unpacked_;
  std::vector<unsigned char> out_;
};

}  // namespace

Reply answerFrames(const Request& request, ShownRecording& recording, LiveAmplifier& amplifier) {
  const Wanted wanted(request, recording.header(), recording.path());
  const std::uint64_t from = wholeOf(request, "from", 0);
  const std::uint64_t step = std::max(wholeOf(request, "step", 1), 1U);
  const std::uint32_t count = std::clamp(wholeOf(request, "count", 1), 1U, kMostFrames);
  Answerer answer(wanted, recording, amplifier);
  answer.expect(count);
  for (std::uint64_t i = 0; i < count && from + i * step < answer.places(); ++i) {
    answer.add(static_cast<std::uint32_t>(from + i * step));
    if (answer.size() >= kEnoughBytes) break;
  }
  if (answer.size() == 0) return refusal(404, "there is no such frame");
  return replyWith(answer.take(), "application/octet-stream");
}

}  // namespace KPF_TOOL

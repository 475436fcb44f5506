#include "tools/kpf/view/still.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/canvas.h"
#include "tools/kpf/frames/comparison.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/terminal/text.h"
#include "tools/kpf/terminal/tool_error.h"
#include "tools/kpf/view/job_request.h"
#include "tools/kpf/view/screen_picture.h"
#include "tools/kpf/view/shown_frames.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kLetter = 12;  // pixels that a letter of the canvas takes

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  return text;
}

std::string fileOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// The date of a time that has one: with its seconds since 1970 too, it fills two lines more.
std::string dateOf(const std::string& time) {
  const std::size_t open = time.find('(');
  return open == std::string::npos ? time : time.substr(open + 1, time.size() - open - 2);
}

/// Words in lines that fit; a longer word has a line of its own, and is cut.
std::vector<std::string> linesOf(const std::string& text, std::size_t letters) {
  std::vector<std::string> lines{""};
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(' ', begin), text.size());
    const std::string word = text.substr(begin, end - begin);
    const bool fits = lines.back().empty() || lines.back().size() + 1 + word.size() <= letters;
    if (!fits) lines.emplace_back();
    if (!lines.back().empty()) lines.back() += ' ';
    lines.back() += word;
    begin = end + 1;
  }
  return lines;
}

/// The picture and below it the caption.
Canvas captioned(const std::vector<unsigned char>& picture, unsigned width, unsigned height,
                 const std::string& caption) {
  const auto lines = linesOf(caption, (width - 2 * Canvas::kCaptionMargin) / kLetter);
  Canvas canvas(width, height + static_cast<unsigned>(lines.size()) * Canvas::kCaptionHeight);
  canvas.place(picture.data(), width, height, 0, 0);
  unsigned top = height + Canvas::kCaptionMargin;
  for (const std::string& line : lines) {
    canvas.write(line, Canvas::kCaptionMargin, top);
    top += Canvas::kCaptionHeight;
  }
  return canvas;
}

class Still {
 public:
  Still(const Json& wanted, ShownRecording& recording, LiveAmplifier& amplifier)
      : header_(recording.header()),
        place_(wanted.at("place").get<std::uint32_t>()),
        show_(wanted.at("show").get<std::string>()),
        how_{recording.path(), wanted.value("frequency", 1.0), wanted.value("gain", 1.0),
             wanted.value("clean", false), false},
        frames_(recording),
        frame_(frames_.at(place_)),
        tone_(toneOf(wanted)) {
    if (frame_.state != FrameState::kThere) {
      throw ToolError(Outcome::kWrongUsage, fmt::format("frame {} is lost", place_),
                      "Choose another one.");
    }
    if (show_ != "original") made_ = amplifier.at(how_, place_);
    name_ = fileOf(recording.path());
  }

  Canvas draw() const {
    const unsigned w = header_.width, h = header_.height;
    if (show_ == "original") return captioned(original(), w, h, caption());
    if (show_ == "reference") return captioned(toned(*made_.reference), w, h, caption());
    if (show_ == "amplified") return captioned(toned(*made_.amplified), w, h, caption());
    Comparison comparison(w, h, {"ORIGINAL", "REFERENCE", "AMPLIFIED"});
    const auto left = original(), middle = toned(*made_.reference), right = toned(*made_.amplified);
    const unsigned char* rows = comparison.of({left.data(), middle.data(), right.data()});
    const std::size_t size = std::size_t{comparison.width()} * comparison.height();
    return captioned({rows, rows + size}, comparison.width(), comparison.height(), caption());
  }

 private:
  Tone toneOf(const Json& wanted) const {
    const auto tone = wanted.at("tone").get<std::array<double, 3>>();
    const double unit = header_.packed12 ? 1 : 16;
    return {tone[0] * unit, tone[1] * unit, std::clamp(tone[2], 0.1, 10.0)};
  }

  std::vector<unsigned char> original() const {
    std::vector<unsigned char> out;
    std::vector<std::uint16_t> samples(header_.pixelCount());
    KPF_READER::unpackPixels(header_, frame_.record.pixels, samples);
    appendShown(out, samples, header_.width, cutoutOf("", header_.width, header_.height), tone_);
    return out;
  }

  std::vector<unsigned char> toned(const std::vector<unsigned char>& samples) const {
    std::vector<unsigned char> out;
    appendShown(out, samples, header_.width, cutoutOf("", header_.width, header_.height), tone_);
    return out;
  }

  std::string caption() const {
    const std::string time = timeText(frame_.record.seconds, frame_.record.microseconds);
    std::string text = fmt::format("{} FRAME {} {}", upper(name_), place_, upper(dateOf(time)));
    if (show_ == "original") return text;
    const std::string what =
        show_ == "reference" ? fmt::format("REFERENCE: THREE CYCLES OF {:g} HZ", how_.frequency)
                             : fmt::format("AMPLIFIED {:g}X AT {:g} HZ", how_.gain, how_.frequency);
    return text + ' ' + what + (how_.clean ? ", CLEAN" : "");
  }

  const KPF_READER::Header& header_;
  std::uint32_t place_;
  std::string show_;
  Amplification how_;
  ShownFrames frames_;
  ShownFrame frame_;
  Tone tone_;
  AmplifiedPictures made_;
  std::string name_;
};

}  // namespace

void writeStill(const Json& wanted, ShownRecording& recording, LiveAmplifier& amplifier) {
  const std::string name = checkedNewName(wanted.at("name").get<std::string>());
  if (!name.ends_with(".png")) {
    throw ToolError(Outcome::kWrongUsage, "a still is a PNG", "Give a name that ends in .png.");
  }
  const Canvas canvas = Still(wanted, recording, amplifier).draw();
  PictureFormat format;
  format.width = canvas.width();
  format.height = canvas.height();
  const Destination destination{name, false, {}};  // which the output looks at until it is whole
  const auto output = openEncodedOutput(destination, format);
  output->add(canvas.rows());
  output->finish();
}

}  // namespace KPF_TOOL

// kpf sheet: source and recording side by side on one page. For the demo, and not in the help.
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/commands/commands.h"
#include "tools/kpf/commands/open.h"
#include "tools/kpf/frames/canvas.h"
#include "tools/kpf/frames/recorded_frames.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kColumns = 3;
constexpr unsigned kShrink = 2;  // every second pixel of every second row
constexpr unsigned kGap = 8;     // pixels

struct SheetOptions {
  std::string source;     // what was recorded
  std::string recording;  // header file
  std::string output;     // an image
  bool force = false;     // replace a file that is there
};

using Picture = std::vector<unsigned char>;

Picture shrunk(const Picture& picture, unsigned width, unsigned height) {
  Picture out;
  for (unsigned y = 0; y + kShrink <= height; y += kShrink) {
    for (unsigned x = 0; x + kShrink <= width; x += kShrink) {
      out.push_back(picture[std::size_t{y} * width + x]);
    }
  }
  return out;
}

unsigned rowHeight(const FrameSource& frames) {
  return frames.height() / kShrink + Canvas::kCaptionHeight;
}

unsigned rowWidth(const FrameSource& frames) {
  return kColumns * (frames.width() / kShrink + kGap) - kGap;
}

/// One row of the page: frames of one source, evenly spread over `count`, some of them twice where
/// there are fewer than columns. What the source does not have stays black.
void drawRow(Canvas& page, FrameSource& frames, std::uint64_t count, const std::string& caption,
             unsigned top) {
  const unsigned width = frames.width() / kShrink;
  const unsigned height = frames.height() / kShrink;
  Picture picture(frames.frameSize());
  std::uint64_t position = 0;  // of the next frame
  for (unsigned column = 0; column < kColumns; ++column) {
    const std::uint64_t wanted = count * (2 * column + 1) / (2 * kColumns);
    if (wanted >= position) {
      frames.skip(wanted - position);
      if (!frames.next()) return;
      frames.copyTo(picture.data(), frames.rowSize());
      position = wanted + 1;
    }
    const unsigned left = column * (width + kGap);
    page.write(fmt::format("{}, FRAME {}", caption, wanted), left + Canvas::kCaptionMargin,
               top + Canvas::kCaptionMargin);
    page.place(shrunk(picture, frames.width(), frames.height()).data(), width, height, left,
               top + Canvas::kCaptionHeight);
  }
}

Outcome runSheet(const SheetOptions& options) {
  const auto source = openFrames(options.source, Samples::k8Bit);
  const auto recording = openRecording(options.recording, Samples::k8Bit);
  if (recording->frameCount() == 0) throw noSuchFrames(options.recording, "it has none at all");
  Canvas page(std::max(rowWidth(*source), rowWidth(*recording)),
              rowHeight(*source) + rowHeight(*recording));
  drawRow(page, *source, recording->frameCount(), "SOURCE", 0);
  drawRow(page, *recording, recording->frameCount(), "RECORDING", rowHeight(*source));
  FileIds input = filesRead(options.source);
  input.add(filesRead(options.recording));
  const auto output = openOutput({options.output, options.force, input},
                                 {page.width(), page.height(), Samples::k8Bit, 1, 0, 1});
  output->add(page.rows());
  output->finish();
  const Outcome ofSource = endOf(source->flaw(), options.source);
  const Outcome ofRecording = endOf(recording->flaw(), options.recording);
  return ofSource == Outcome::kDone ? ofRecording : ofSource;
}

}  // namespace

void addSheet(CLI::App& app, Job& job) {
  const auto [line, options] =
      addCommand(app, job, "sheet", "Source and recording on one page", runSheet);
  line.group("");  // keeps it out of the help
  line.add_option("SOURCE", options.source, "what was recorded")->required();
  line.add_option("FILE", options.recording, "header file (.kpf)")->required();
  line.add_option("OUT", options.output, "an image")->required();
  line.add_flag("--force", options.force, "replace files that are there");
  addFooter(line, "kpf sheet street.avi clip.kpf sheet.png",
            {"the page is written", kCutShortText, kNotBegunText});
}

}  // namespace KPF_TOOL

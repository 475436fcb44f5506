#include "tools/kpf/commands/sheet.h"

#include <fmt/format.h>

#include <vector>

#include "tools/kpf/frames/canvas.h"
#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/media/media_output.h"
#include "tools/kpf/terminal/tool_error.h"

namespace KPF_TOOL {
namespace {

constexpr unsigned kColumns = 3;
constexpr unsigned kShrink = 2;  // every second pixel of every second row
constexpr unsigned kGap = 8;     // pixels
constexpr unsigned kMargin = 7;  // pixels around a caption

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

/// One row of the page: frames of one source, evenly spread over `count`.
void drawRow(Canvas& page, FrameSource& frames, std::uint64_t count, const std::string& caption,
             unsigned top) {
  const unsigned width = frames.width() / kShrink;
  const unsigned height = frames.height() / kShrink;
  Picture picture(std::size_t{frames.width()} * frames.height());
  std::uint64_t position = 0;
  for (unsigned column = 0; column < kColumns; ++column) {
    const std::uint64_t wanted = count * (2 * column + 1) / (2 * kColumns);
    frames.skip(wanted - position);
    if (!frames.next(picture.data())) return;
    position = wanted + 1;
    const unsigned left = column * (width + kGap);
    page.write(fmt::format("{}, FRAME {}", caption, wanted), left + kMargin, top + kMargin);
    page.place(shrunk(picture, frames.width(), frames.height()).data(), width, height, left,
               top + Canvas::kCaptionHeight);
  }
}

}  // namespace

int runSheet(const SheetOptions& options) {
  const auto source = openFrames(options.source, Samples::k8Bit);
  const auto recording = openRecording(options.recording, Samples::k8Bit);
  const unsigned rowHeight = recording->height() / kShrink + Canvas::kCaptionHeight;
  Canvas page(kColumns * (recording->width() / kShrink + kGap) - kGap, 2 * rowHeight);
  drawRow(page, *source, recording->frameCount(), "SOURCE", 0);
  drawRow(page, *recording, recording->frameCount(), "RECORDING", rowHeight);
  const auto output =
      openOutput(options.output, {page.width(), page.height(), Samples::k8Bit, 1, 0});
  output->add(page.rows());
  output->finish();
  return kDone;
}

}  // namespace KPF_TOOL

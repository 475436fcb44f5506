#include "tools/kpf/frames/lost_frames.h"

#include <fmt/format.h>

#include <cstddef>

#include "tools/kpf/terminal/text.h"

namespace KPF_TOOL {
namespace {

constexpr std::size_t kRunsOfALine = 8;

}  // namespace

LostShown lostShownFor(const std::string& text, bool bare) {
  if (text == "skip") return LostShown::kSkip;
  if (text == "black" || (text.empty() && bare)) return LostShown::kBlack;
  return LostShown::kRepeat;
}

bool LostFrames::add(std::uint64_t number, PictureOutput& output, const unsigned char* before,
                     std::size_t size) {
  ++count_;
  if (!runs_.empty() && runs_.back().last + 1 == number) {
    runs_.back().last = number;
  } else {
    runs_.push_back({number, number});
  }
  if (shown_ == LostShown::kSkip) {
    output.pass();
    return false;
  }
  if (shown_ == LostShown::kBlack) {
    black_.resize(size);
    before = black_.data();
  }
  output.add(before);
  return true;
}

std::string LostFrames::textOf(const Run& run) {
  return run.first == run.last ? fmt::format("{}", run.first)
                               : fmt::format("{}-{}", run.first, run.last);
}

std::string LostFrames::text() const {
  std::string text;
  for (std::size_t i = 0; i < runs_.size() && i < kRunsOfALine; ++i) {
    text += (i == 0 ? "" : ", ") + textOf(runs_[i]);
  }
  if (runs_.size() <= kRunsOfALine) return text;
  return text + fmt::format(" and {} more", countText(runs_.size() - kRunsOfALine, "run"));
}

std::string LostFrames::list() const {
  std::string lines;
  for (const Run& run : runs_) lines += textOf(run) + "\n";
  return lines;
}

const char* LostFrames::shownText() const {
  switch (shown_) {
    case LostShown::kRepeat:
      return "the frame before is shown instead";
    case LostShown::kBlack:
      return "black is shown instead";
    case LostShown::kSkip:
      break;
  }
  return "nothing is shown instead";
}

}  // namespace KPF_TOOL

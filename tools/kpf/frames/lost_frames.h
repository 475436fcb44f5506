// What is shown in the place of frames that were lost.
#ifndef KPF_LOST_FRAMES_H
#define KPF_LOST_FRAMES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/frames/picture_output.h"

namespace KPF_TOOL {

/// What stands where a frame was lost.
enum class LostShown {
  kRepeat,  // the picture before it once more, so that nothing flickers and every time is kept
  kBlack,   // what the recording holds there
  kSkip     // nothing: in a video what follows comes earlier, images keep their numbers
};

/// @param text `repeat`, `black` or `skip`; empty for what fits the output: in pictures and videos
/// nobody wants to see black, while who reads `bare` frames looks for what was recorded.
LostShown lostShownFor(const std::string& text, bool bare);

/// Keeps the numbers of lost frames, and puts something in their place.
class LostFrames {
 public:
  explicit LostFrames(LostShown shown) : shown_(shown) {}

  /// Frame `number`, behind all that were added before. @param before the picture before it.
  /// @param size its bytes. @return whether a picture was added to `output`.
  bool add(std::uint64_t number, PictureOutput& output, const unsigned char* before,
           std::size_t size);

  std::uint64_t count() const { return count_; }

  /// "7, 20-29", and how many more runs of them there are where the line would get long.
  std::string text() const;

  /// All of them, a run a line.
  std::string list() const;

  /// What was done with them, in words: "the frame before is shown instead".
  const char* shownText() const;

 private:
  struct Run {
    std::uint64_t first;
    std::uint64_t last;
  };
  static std::string textOf(const Run& run);

  LostShown shown_;
  std::uint64_t count_ = 0;
  std::vector<Run> runs_;
  std::vector<unsigned char> black_;  // made when it is wanted
};

}  // namespace KPF_TOOL

#endif

// A video input that is recorded like a camera.
#ifndef KPF_INPUT_AS_LIVE_H
#define KPF_INPUT_AS_LIVE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/kpf/frames/frame_source.h"
#include "tools/kpf/frames/live_source.h"
#include "tools/kpf/recording/timeline.h"

namespace KPF_TOOL {

/// Gives what a video input decodes as records: Video4Linux and pipes can wait for an event too.
class InputAsLive : public LiveSource {
 public:
  /// @param input stands on its first frame.
  /// @param bits 8 or 12, of a pixel as recorded.
  InputAsLive(FrameSource& input, int bits, const Timeline& timeline);

  LiveFrame next() override;
  std::string trouble() const override { return input_.flaw(); }

 private:
  FrameSource& input_;
  unsigned bits_;
  Timeline timeline_;
  std::size_t stride_;  // bytes from row to row, as the library wants them
  std::vector<unsigned char> image_;
  std::vector<unsigned char> record_;
  bool begun_ = false;
};

}  // namespace KPF_TOOL

#endif

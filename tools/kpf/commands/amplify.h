// kpf amplify: small movements become visible.
#ifndef KPF_AMPLIFY_H
#define KPF_AMPLIFY_H

#include <string>

#include "tools/kpf/commands/export.h"

namespace KPF_TOOL {

struct AmplifyOptions {
  std::string input;     // a recording, or whatever FFmpeg opens
  std::string output;    // see openOutput
  double frequency = 1;  // of the motion, in hertz
  double gain = 4;
  double rate = 0;       // frames per second; 0: the input's
  bool compare = false;  // original, reference and amplified frame side by side
  FrameRange range;
  bool quiet = false;
};

/// @return 0: done; 1: cut short; throws ToolError and RecordingError.
int runAmplify(const AmplifyOptions& options);

}  // namespace KPF_TOOL

#endif

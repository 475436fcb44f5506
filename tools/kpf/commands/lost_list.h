// The list that stands beside pictures of a recording with lost frames.
#ifndef KPF_LOST_LIST_H
#define KPF_LOST_LIST_H

#include <cstdint>
#include <string>

#include "tools/kpf/commands/command.h"
#include "tools/kpf/files/new_file.h"
#include "tools/kpf/frames/lost_frames.h"

namespace KPF_TOOL {

/// --lost.
void addLost(CLI::App& line, std::string& lost);

/// Tells which of the pictures are no frames of the recording: in a line, and in a file beside
/// them, since they look like any other. Raw frames in a pipe have no such file.
class LostList {
 public:
  /// @param output where the pictures go. @throws ToolError when a list is in the way.
  explicit LostList(const Destination& output);

  /// Once the pictures are whole. Without lost frames there is no list, and an older one goes.
  /// @param input the recording. @param frames how many were to be shown.
  /// @throws ToolError when it cannot be written.
  void finish(const LostFrames& lost, const std::string& input, std::uint64_t frames) const;

 private:
  Destination list_;  // its name is empty where there is to be none
};

}  // namespace KPF_TOOL

#endif

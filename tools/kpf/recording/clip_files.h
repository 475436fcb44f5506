// Recordings on disk, one for each event.
#ifndef KPF_CLIP_FILES_H
#define KPF_CLIP_FILES_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/kpf/files/file_ids.h"
#include "tools/kpf/recording/claim.h"
#include "tools/kpf/recording/live_recorder.h"
#include "tools/kpf/recording/record_stream.h"
#include "tools/kpf/terminal/captured_output.h"

namespace KPF_TOOL {

/// A recording that has ended.
struct Clip {
  std::string header;
  std::uint64_t frames = 0;  // placeholders included
  std::uint64_t placeholders = 0;
  bool whole = false;  // every one of them is on disk, and the header says how many there are
};

/// What they are called, and what may be in their way.
struct ClipTarget {
  std::string header;
  bool numbered =
      false;           // clip_0001.kpf, the next free number each time, instead of the name itself
  bool force = false;  // replace what is there under the name itself
  FileIds input;       // files that are read
};

/// Makes them one after the other.
class ClipFiles : public ClipSink {
 public:
  /// @param captured what the library says: any line means that a write failed.
  ClipFiles(const ClipTarget& target, const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration,
            CapturedOutput& captured);

  /// @throws ToolError where none can be begun.
  void begin() override;
  void add(unsigned char* record) override;
  void addPlaceholder() override;
  void end() override;

  const std::vector<Clip>& clips() const { return clips_; }
  /// Seconds that the slowest record took to write.
  double worstCall() const { return worstCall_; }

 private:
  std::string claimedName();
  std::string claimedNumber();

  ClipTarget target_;
  VLM_INTERNAL::VXP_STREAM_CONFIGURATION configuration_;
  CapturedOutput& captured_;
  std::optional<Claim> claim_;  // of the recording that is being made
  std::unique_ptr<LibraryStream> stream_;
  Clip present_;
  std::vector<Clip> clips_;
  double worstCall_ = 0;
};

}  // namespace KPF_TOOL

#endif

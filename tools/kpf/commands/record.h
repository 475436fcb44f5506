// kpf record: a video becomes a recording.
#ifndef KPF_RECORD_H
#define KPF_RECORD_H

#include <cstdint>
#include <string>

namespace KPF_TOOL {

struct RecordOptions {
  std::string input;         // whatever FFmpeg opens; "-" standard input
  std::string output;        // header file
  int bits = 8;              // 8 or 12
  std::uint64_t frames = 0;  // 0: as many as the input holds
  double rate = 0;           // frames per second; 0: the input's
  std::string start;         // of the first frame; empty: now
  std::string text;          // text5
  std::string note;          // text2
  bool fillGaps = false;     // placeholders where the input's time stamps skip frames
  bool force = false;        // replace another recording
  bool quiet = false;
};

/// @return 0: every frame is on disk; 1: the job was cut short; throws ToolError.
int runRecord(const RecordOptions& options);

}  // namespace KPF_TOOL

#endif

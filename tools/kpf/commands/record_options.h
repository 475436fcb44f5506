// What a user can ask of kpf record.
#ifndef KPF_RECORD_OPTIONS_H
#define KPF_RECORD_OPTIONS_H

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/kpf/commands/live_options.h"
#include "tools/kpf/media/media.h"
#include "tools/kpf/recording/record_report.h"

namespace KPF_TOOL {

struct RecordOptions {
  std::string input;         // whatever FFmpeg opens; "-" standard input
  std::string output;        // header file
  int bits = 0;              // 8 or 12; 0: those of a GenICam camera's format, else 8
  std::string raw;           // "640x480:gray8": the input is nothing but frames
  std::uint64_t frames = 0;  // at most; 0: as many as the input holds
  double duration = 0;       // in seconds, at most; 0: as long as the input lasts
  double rate = 0;           // frames per second; 0: the input's
  std::string start;         // of the first frame; empty: now
  std::string text;          // text5
  std::string note;          // text2
  bool checksums = false;    // keep those of the records beside the header
  bool fillGaps = false;     // placeholders where the input's time stamps skip frames
  bool force = false;        // replace another recording
  bool quiet = false;
  bool json = false;
  LiveOptions live;

  /// The bits to record of a video's pixels.
  int videoBits() const { return bits == 0 ? 8 : bits; }
  bool isLimited() const { return frames > 0 || duration > 0; }
};

void addRecordOptions(CLI::App& line, RecordOptions& options);

/// What --raw and --rate say of the input. @throws ToolError where --raw says it otherwise.
MediaHints hintsOf(const RecordOptions& options);

/// The frame rate to record, which the format holds as a whole number; what is rounded or guessed
/// is told. @param inputs 0 when the input tells none. @throws ToolError when there is none.
double wholeRate(const RecordOptions& options, double inputs, RecordReport& report);

/// The frames after which to stop; without limits what no recording reaches.
std::uint64_t frameLimit(const RecordOptions& options, double rate);

/// As much of a text as fits `bytes`, whole letters of UTF-8; what is cut off is told.
std::string fitted(const std::string& text, const std::string& option, std::size_t bytes,
                   RecordReport& report);

}  // namespace KPF_TOOL

#endif

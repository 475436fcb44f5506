// kpf sheet: source and recording side by side on one page. For the demo, and not in the help.
#ifndef KPF_SHEET_H
#define KPF_SHEET_H

#include <string>

namespace KPF_TOOL {

struct SheetOptions {
  std::string source;     // what was recorded
  std::string recording;  // header file
  std::string output;     // an image
};

/// @return 0; throws ToolError and RecordingError.
int runSheet(const SheetOptions& options);

}  // namespace KPF_TOOL

#endif

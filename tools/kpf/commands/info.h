// kpf info: what a recording is.
#ifndef KPF_INFO_H
#define KPF_INFO_H

#include <string>

namespace KPF_TOOL {

struct InfoOptions {
  std::string file;  // the header file
  bool json = false;
};

/// Prints geometry, rate, texts, frames, times, files, and whether the recording is complete.
/// @return 0, also for a recording that is not; 2: the recording cannot be read.
int runInfo(const InfoOptions& options);

}  // namespace KPF_TOOL

#endif

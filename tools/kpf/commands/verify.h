// kpf verify: is every byte of a recording as it must be?
#ifndef KPF_VERIFY_H
#define KPF_VERIFY_H

#include <string>

namespace KPF_TOOL {

struct VerifyOptions {
  std::string file;  // the header file
  bool json = false;
  bool quiet = false;  // no progress
};

/// Prints each finding with file, record and offset, and a last line that sums up.
/// @return 0: nothing found; 1: the recording has problems; 2: there is nothing to verify.
int runVerify(const VerifyOptions& options);

}  // namespace KPF_TOOL

#endif

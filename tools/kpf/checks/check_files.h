// The checks of a recording's files that need no look at the frames.
#ifndef KPF_CHECK_FILES_H
#define KPF_CHECK_FILES_H

#include "kpf_reader.h"
#include "tools/kpf/checks/findings.h"

namespace KPF_TOOL {

/// Are the data files there and as long as they must be, are all announced frames there, and what
/// does a status file say?
void checkCompleteness(const KPF_READER::Recording& recording, Findings& findings);

/// Bytes of the header file that a recorder would have left otherwise.
void checkHeader(const KPF_READER::Recording& recording, Findings& findings);

/// Whatever else lies in the folder of the data files.
void checkStrayFiles(const KPF_READER::Recording& recording, Findings& findings);

}  // namespace KPF_TOOL

#endif

// A header whose data files have another name.
#ifndef KPF_RENAMED_H
#define KPF_RENAMED_H

#include <string>

#include "kpf_reader.h"

namespace KPF_TOOL {

/// What to say of a recording without data files when some are near that no header belongs to:
/// which, and what to rename. Empty when there are none.
std::string whereDataMayBe(const KPF_READER::Recording& recording);

}  // namespace KPF_TOOL

#endif

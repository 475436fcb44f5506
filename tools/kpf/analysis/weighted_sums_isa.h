// What the kernel file of an instruction set offers the chooser.
#ifndef KPF_WEIGHTED_SUMS_ISA_H
#define KPF_WEIGHTED_SUMS_ISA_H

#include "tools/kpf/analysis/weighted_sums.h"

namespace KPF_TOOL {

extern const SumKernels kSumKernelsAvx2;

}  // namespace KPF_TOOL

#endif

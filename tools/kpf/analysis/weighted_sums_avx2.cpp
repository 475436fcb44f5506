// Runs on processors with AVX2 only: eight pixels at once instead of four. Wider registers bring
// nothing more, as the levels come no faster.
#include "tools/kpf/analysis/weighted_sums_isa.h"
#include "tools/kpf/analysis/weighted_sums_loops.h"

namespace KPF_TOOL {

constexpr SumKernels kSumKernelsAvx2{subtractLevelsLoop, addWeightedLoop, addSquaresLoop};

}  // namespace KPF_TOOL

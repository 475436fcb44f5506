#include "tools/kpf/analysis/weighted_sums.h"

#include "tools/kpf/analysis/weighted_sums_isa.h"
#include "tools/kpf/analysis/weighted_sums_loops.h"

namespace KPF_TOOL {
namespace {

constexpr SumKernels kPlain{subtractLevelsLoop, addWeightedLoop, addSquaresLoop};

}  // namespace

#ifdef VLM_X86_KERNELS
constinit CPU::KernelChoice<SumKernels> sumKernels(&kPlain, &kSumKernelsAvx2);
#else
constinit CPU::KernelChoice<SumKernels> sumKernels(&kPlain);
#endif

}  // namespace KPF_TOOL

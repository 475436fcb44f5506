// The instruction sets that inner loops are written for.
#ifndef CPU_ISA_H
#define CPU_ISA_H

namespace CPU {

/// kPlain runs everywhere. kAvx2 asks for FMA too; kAvx512 for F, BW, VL, DQ and VBMI on top.
enum class Isa { kPlain, kAvx2, kAvx512 };

inline constexpr Isa kAllIsas[] = {Isa::kPlain, Isa::kAvx2, Isa::kAvx512};

}  // namespace CPU

#endif

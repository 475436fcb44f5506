#include "tests/support/forced_kernels.h"

#include <cstddef>
#include <cstdlib>
#include <iterator>

#include "motionampl/vx_motion_kernels.h"
#include "packed/vx_pack_kernels.h"
#include "reader/kpf_unpack_kernels.h"

namespace TEST_SUPPORT {
namespace {

constexpr std::string_view kNames[] = {"plain", "avx2", "avx512"};
static_assert(std::size(kNames) == std::size(CPU::kAllIsas));

}  // namespace

bool forceKernels(std::string_view name) {
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    const CPU::Isa isa = CPU::kAllIsas[i];
    if (name == kNames[i]) {
      return VX_KPF_PACKED::packKernels.force(isa) && KPF_READER::unpackKernels.force(isa) &&
             VLM_KPF::motionKernels.force(isa);
    }
  }
  return false;
}

bool forceKernelsOfEnvironment() {
  const char* const name = std::getenv("VLM_KERNELS");
  return name == nullptr || forceKernels(name);
}

}  // namespace TEST_SUPPORT

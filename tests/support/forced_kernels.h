// Kernels that a whole run of tests or benchmarks is held to.
#ifndef TESTS_SUPPORT_FORCED_KERNELS_H
#define TESTS_SUPPORT_FORCED_KERNELS_H

#include <string_view>

namespace TEST_SUPPORT {

/// Forces the kernels named by the environment variable VLM_KERNELS, "plain", "avx2" or "avx512",
/// on packing, unpacking and the amplifier; without it each chooses its own.
/// @return false where the name is none of these, or there are no such kernels here.
bool forceKernelsOfEnvironment();

/// The same by name.
bool forceKernels(std::string_view name);

}  // namespace TEST_SUPPORT

#endif

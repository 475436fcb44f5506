#include <gtest/gtest.h>

#include <cstdio>

#include "tests/support/forced_kernels.h"

int main(int argc, char** argv) {
  constexpr int kSkipped = 77;  // what CTest is told to take for it
  testing::InitGoogleTest(&argc, argv);
  if (!TEST_SUPPORT::forceKernelsOfEnvironment()) {
    std::puts("VLM_KERNELS names kernels that this processor does not run");
    return kSkipped;
  }
  return RUN_ALL_TESTS();
}

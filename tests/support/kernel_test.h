// A test that runs once for the kernels of every instruction set.
#ifndef TESTS_SUPPORT_KERNEL_TEST_H
#define TESTS_SUPPORT_KERNEL_TEST_H

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "cpu/isa.h"
#include "cpu/kernel_choice.h"

namespace TEST_SUPPORT {

/// Cases about the sets of type `Set`; skipped where the processor does not run the set in turn.
template <class Set>
class KernelTest : public testing::TestWithParam<CPU::Isa> {
 protected:
  explicit KernelTest(const CPU::KernelChoice<Set>& choice)
      : plain(*choice.of(CPU::Isa::kPlain)), kernels(choice.of(GetParam())) {}

  void SetUp() override {
    if (kernels == nullptr) GTEST_SKIP() << "not on this processor";
  }

  const Set& plain;          // the definition
  const Set* const kernels;  // the set in turn
};

inline std::string isaName(const testing::TestParamInfo<CPU::Isa>& info) {
  constexpr const char* kNames[] = {"Plain", "Avx2", "Avx512"};
  return kNames[static_cast<std::size_t>(info.param)];
}

}  // namespace TEST_SUPPORT

/// Runs the cases of `Suite`, a KernelTest, for every instruction set.
#define INSTANTIATE_KERNEL_TEST(Suite) \
  INSTANTIATE_TEST_SUITE_P(AllSets, Suite, testing::ValuesIn(CPU::kAllIsas), TEST_SUPPORT::isaName)

#endif

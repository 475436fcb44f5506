#include "cpu/kernel_choice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <string>

#include "motionampl/vx_motion_kernels.h"
#include "packed/vx_pack_kernels.h"
#include "reader/kpf_unpack_kernels.h"
#include "tests/support/forced_kernels.h"

namespace {

using CPU::Isa;
using CPU::kAllIsas;
using CPU::KernelChoice;

/// Runs its cases on a choice that the library makes.
template <auto& kChoice>
struct ChoiceOf {
  static auto& choice() { return kChoice; }
};

template <class Holder>
class EveryKernelChoice : public testing::Test {};

using AllChoices =
    testing::Types<ChoiceOf<VX_KPF_PACKED::packKernels>, ChoiceOf<VLM_KPF::motionKernels>,
                   ChoiceOf<KPF_READER::unpackKernels>>;
TYPED_TEST_SUITE(EveryKernelChoice, AllChoices);

TYPED_TEST(EveryKernelChoice, ForcedSetIsTheOneInUse) {
  auto& choice = TypeParam::choice();
  const auto& before = choice.inUse();
  for (const Isa isa : kAllIsas) {
    const auto* const set = choice.of(isa);
    EXPECT_EQ(choice.force(isa), set != nullptr);
    if (set != nullptr) {
      EXPECT_EQ(&choice.inUse(), set);
    }
  }
  for (const Isa isa : kAllIsas) {
    if (choice.of(isa) == &before) choice.force(isa);
  }
  EXPECT_EQ(&choice.inUse(), &before);
}

/// The functions of a set, which is a record of function pointers and nothing else.
template <class Set>
auto functionsOf(const Set& set) {
  using Function = void (*)();
  return std::bit_cast<std::array<Function, sizeof(Set) / sizeof(Function)>>(set);
}

TYPED_TEST(EveryKernelChoice, WiderSetsShareNoFunctionWithThePlainOne) {
  const auto plain = functionsOf(*TypeParam::choice().of(Isa::kPlain));
  for (const Isa isa : {Isa::kAvx2, Isa::kAvx512}) {
    const auto* const set = TypeParam::choice().of(isa);
    if (set == nullptr) continue;
    for (const auto function : functionsOf(*set)) {
      EXPECT_EQ(std::count(plain.begin(), plain.end(), function), 0);
    }
  }
}

// The run as a whole may be held to one set. Then this is the set that everything else here ran.
TYPED_TEST(EveryKernelChoice, IsHeldToTheSetOfTheEnvironment) {
  const char* const name = std::getenv("VLM_KERNELS");
  if (name == nullptr) GTEST_SKIP() << "VLM_KERNELS is not set";
  const std::string text = name;
  const Isa isa = text == "plain" ? Isa::kPlain : text == "avx2" ? Isa::kAvx2 : Isa::kAvx512;
  EXPECT_EQ(&TypeParam::choice().inUse(), TypeParam::choice().of(isa));
}

TEST(ForcedKernels, UnknownNameIsRefused) { EXPECT_FALSE(TEST_SUPPORT::forceKernels("sse9")); }

struct Set {};
constexpr Set kPlain;
constexpr Set kAvx2;
constexpr Set kAvx512;

TEST(KernelChoice, TakesTheWidestSetThatThisProcessorRuns) {
  KernelChoice<Set> choice(&kPlain, &kAvx2, &kAvx512);
  const Set* const widest = CPU::isSupported(Isa::kAvx512) ? &kAvx512
                            : CPU::isSupported(Isa::kAvx2) ? &kAvx2
                                                           : &kPlain;
  EXPECT_EQ(&choice.inUse(), widest);
}

TEST(KernelChoice, BuildWithoutWiderSetsUsesThePlainOne) {
  KernelChoice<Set> choice(&kPlain);
  EXPECT_EQ(choice.of(Isa::kAvx2), nullptr);
  EXPECT_FALSE(choice.force(Isa::kAvx2));
  EXPECT_EQ(&choice.inUse(), &kPlain);
}

TEST(KernelChoice, RefusedForceLeavesTheSetInUse) {
  KernelChoice<Set> choice(&kPlain, nullptr, &kAvx512);
  ASSERT_TRUE(choice.force(Isa::kPlain));
  EXPECT_FALSE(choice.force(Isa::kAvx2));
  EXPECT_EQ(&choice.inUse(), &kPlain);
}

}  // namespace

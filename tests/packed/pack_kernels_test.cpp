#include "packed/vx_pack_kernels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "tests/support/files.h"
#include "tests/support/forced_kernels.h"
#include "tests/support/kernel_inputs.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::Source;
using testing::ElementsAre;
using VX_KPF_PACKED::forcePackKernels;
using VX_KPF_PACKED::Isa;
using VX_KPF_PACKED::PackKernels;
using VX_KPF_PACKED::packKernels;
using VX_KPF_PACKED::packKernelsOf;

constexpr std::size_t kGuard = 64;  // bytes before and behind an output

class PackKernelsOf : public testing::TestWithParam<Isa> {
 protected:
  void SetUp() override {
    if (kernels == nullptr) GTEST_SKIP() << "not on this processor";
  }

  const PackKernels* const kernels = packKernelsOf(GetParam());
};

TEST_P(PackKernelsOf, PairSharesItsMiddleByte) {
  const Bytes in{0xC0, 0xAB, 0x30, 0x12};
  Bytes out(3);
  kernels->packPairs(in.data(), out.data(), 1);
  EXPECT_THAT(out, ElementsAre(0xAB, 0x3C, 0x12));
}

TEST_P(PackKernelsOf, LowestFourBitsAreDropped) {
  const Bytes in{0xCF, 0xAB, 0x3F, 0x12};
  Bytes out(3);
  kernels->packPairs(in.data(), out.data(), 1);
  EXPECT_THAT(out, ElementsAre(0xAB, 0x3C, 0x12));
}

TEST_P(PackKernelsOf, AllPackAsThePlainLoopDoes) {
  const PackKernels& plain = *packKernelsOf(Isa::kPlain);
  TEST_SUPPORT::forKernelInputs([&](std::size_t pairs, std::size_t offset, const Source& source) {
    const auto in = TEST_SUPPORT::filled<unsigned char>(4 * pairs + offset, source);
    Bytes out(kGuard + offset + 3 * pairs + kGuard, 0xA5);
    Bytes expected = out;
    plain.packPairs(in.data() + offset, expected.data() + kGuard + offset, pairs);
    kernels->packPairs(in.data() + offset, out.data() + kGuard + offset, pairs);
    ASSERT_TRUE(out == expected) << pairs << " pairs, offset " << offset;
  });
}

TEST_P(PackKernelsOf, RowsAreCopiedAndNothingElse) {
  TEST_SUPPORT::forKernelInputs([&](std::size_t size, std::size_t offset, const Source& source) {
    const auto in = TEST_SUPPORT::filled<unsigned char>(size + offset, source);
    Bytes out(kGuard + offset + size + kGuard, 0xA5);
    Bytes expected = out;
    std::copy(in.begin() + static_cast<std::ptrdiff_t>(offset), in.end(),
              expected.begin() + static_cast<std::ptrdiff_t>(kGuard + offset));
    kernels->copyRow(in.data() + offset, out.data() + kGuard + offset, size);
    ASSERT_TRUE(out == expected) << size << " bytes, offset " << offset;
  });
}

// A bit of a pair can reach one other bit at most, so each alone shows where it goes.
TEST_P(PackKernelsOf, EveryBitGoesWhereThePlainLoopPutsIt) {
  for (std::size_t bit = 0; bit < 32 * 48; ++bit) {
    Bytes in(4 * 48);
    in[bit / 8] = static_cast<unsigned char>(1 << bit % 8);
    Bytes out(3 * 48);
    Bytes expected(3 * 48);
    packKernelsOf(Isa::kPlain)->packPairs(in.data(), expected.data(), 48);
    kernels->packPairs(in.data(), out.data(), 48);
    ASSERT_TRUE(out == expected) << "bit " << bit;
  }
}

INSTANTIATE_TEST_SUITE_P(AllSets, PackKernelsOf, testing::ValuesIn(CPU::kAllIsas),
                         TEST_SUPPORT::isaName);

TEST(PackKernelChoice, ForcedSetIsTheOneInUse) {
  const PackKernels& before = packKernels();
  for (const Isa isa : CPU::kAllIsas) {
    const PackKernels* const kernels = packKernelsOf(isa);
    EXPECT_EQ(forcePackKernels(isa), kernels != nullptr);
    if (kernels != nullptr) {
      EXPECT_EQ(&packKernels(), kernels);
    }
  }
  for (const Isa isa : CPU::kAllIsas) {
    if (packKernelsOf(isa) == &before) forcePackKernels(isa);
  }
  EXPECT_EQ(&packKernels(), &before);
}

TEST(PackKernelChoice, SetsDiffer) {
  for (const Isa isa : {Isa::kAvx2, Isa::kAvx512}) {
    const PackKernels* const kernels = packKernelsOf(isa);
    if (kernels == nullptr) continue;
    EXPECT_NE(kernels->packPairs, packKernelsOf(Isa::kPlain)->packPairs);
  }
}

// The run as a whole may be held to one set. Then this is the set that everything else here ran.
TEST(PackKernelChoice, EnvironmentOfTheTestsIsHeard) {
  const char* const name = std::getenv("VLM_KERNELS");
  if (name == nullptr) GTEST_SKIP() << "VLM_KERNELS is not set";
  const std::string text = name;
  const Isa isa = text == "plain" ? Isa::kPlain : text == "avx2" ? Isa::kAvx2 : Isa::kAvx512;
  EXPECT_EQ(&packKernels(), packKernelsOf(isa));
}

TEST(PackKernelChoice, UnknownNameIsRefused) { EXPECT_FALSE(TEST_SUPPORT::forceKernels("sse9")); }

}  // namespace

#include "packed/vx_pack_kernels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "tests/support/files.h"
#include "tests/support/kernel_inputs.h"
#include "tests/support/kernel_test.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::Source;
using testing::ElementsAre;

constexpr std::size_t kGuard = 64;  // bytes before and behind an output

class PackKernelsOf : public TEST_SUPPORT::KernelTest<VX_KPF_PACKED::PackKernels> {
 protected:
  PackKernelsOf() : KernelTest(VX_KPF_PACKED::packKernels) {}
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
    plain.packPairs(in.data(), expected.data(), 48);
    kernels->packPairs(in.data(), out.data(), 48);
    ASSERT_TRUE(out == expected) << "bit " << bit;
  }
}

INSTANTIATE_KERNEL_TEST(PackKernelsOf);

}  // namespace

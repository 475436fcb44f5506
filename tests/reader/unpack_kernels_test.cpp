#include "reader/kpf_unpack_kernels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/kernel_inputs.h"
#include "tests/support/kernel_test.h"

namespace {

using TEST_SUPPORT::Bytes;
using TEST_SUPPORT::Source;
using testing::ElementsAre;
using Samples = std::vector<std::uint16_t>;

constexpr std::size_t kGuard = 64;  // samples before and behind an output

class UnpackKernelsOf : public TEST_SUPPORT::KernelTest<KPF_READER::UnpackKernels> {
 protected:
  UnpackKernelsOf() : KernelTest(KPF_READER::unpackKernels) {}
};

TEST_P(UnpackKernelsOf, PairSharesItsMiddleByte) {
  const Bytes in{0xAB, 0x3C, 0x12};
  Samples out(2);
  kernels->unpackPairs(in.data(), out.data(), 1);
  EXPECT_THAT(out, ElementsAre(0xABC0, 0x1230));
}

TEST_P(UnpackKernelsOf, ValuesAreMovedRight) {
  const Bytes in{0xAB, 0x3C, 0x12, 0xFF, 0xFF, 0xFF};
  Samples out(6, 0x7777);
  kernels->unpackValues(in.data(), out.data() + 1, 2);
  EXPECT_THAT(out, ElementsAre(0x7777, 0x0ABC, 0x0123, 0x0FFF, 0x0FFF, 0x7777));
}

TEST_P(UnpackKernelsOf, NothingBehindThePairsIsTouched) {
  const Bytes in{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xFF};
  Samples out(6, 0x7777);
  kernels->unpackPairs(in.data(), out.data() + 1, 2);
  EXPECT_THAT(out, ElementsAre(0x7777, 0x0130, 0x4520, 0x6790, 0xAB80, 0x7777));
}

using Unpack = decltype(KPF_READER::UnpackKernels::unpackPairs);

void expectAsPlain(Unpack unpack, Unpack plain) {
  TEST_SUPPORT::forKernelInputs([&](std::size_t pairs, std::size_t offset, const Source& source) {
    const auto in = TEST_SUPPORT::filled<unsigned char>(3 * pairs + offset, source);
    Samples out(kGuard + offset + 2 * pairs + kGuard, 0xA5A5);
    Samples expected = out;
    plain(in.data() + offset, expected.data() + kGuard + offset, pairs);
    unpack(in.data() + offset, out.data() + kGuard + offset, pairs);
    ASSERT_TRUE(out == expected) << pairs << " pairs, offset " << offset;
  });
}

TEST_P(UnpackKernelsOf, AllUnpackAsThePlainLoopDoes) {
  expectAsPlain(kernels->unpackPairs, plain.unpackPairs);
  expectAsPlain(kernels->unpackValues, plain.unpackValues);
}

INSTANTIATE_KERNEL_TEST(UnpackKernelsOf);

}  // namespace

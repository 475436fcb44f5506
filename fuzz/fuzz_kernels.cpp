// Kernel against kernel: every set that runs here gives the bytes of the plain one.
//
// Input: which kernel, how many items, where they begin, a window, then the data.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "cpu/isa.h"
#include "fuzz/fuzz_input.h"
#include "motionampl/vx_motion_kernels.h"
#include "packed/vx_pack_kernels.h"
#include "reader/kpf_unpack_kernels.h"

namespace {

using Bytes = std::vector<unsigned char>;
using CPU::Isa;

struct Job {
  unsigned kernel;
  std::size_t items;
  std::uint32_t window;
  const unsigned char* a;
  const unsigned char* b;
};

template <class Number>
Bytes bytesOf(const std::vector<Number>& numbers) {
  const auto* const first = reinterpret_cast<const unsigned char*>(numbers.data());
  return {first, first + numbers.size() * sizeof(Number)};
}

Bytes pack(const VX_KPF_PACKED::PackKernels& kernels, const Job& job) {
  Bytes out(3 * job.items + 1, 0xEE);
  if (job.kernel == 0) {
    kernels.packPairs(job.a, out.data(), job.items);
  } else {
    kernels.copyRow(job.a, out.data(), job.items);
  }
  return out;
}

Bytes unpack(const KPF_READER::UnpackKernels& kernels, const Job& job) {
  std::vector<std::uint16_t> out(2 * job.items + 1, 0xEEEE);
  kernels.unpackPairs(job.a, out.data(), job.items);
  return bytesOf(out);
}

Bytes amplify(const VLM_KPF::MotionKernels& kernels, const Job& job) {
  std::vector<std::uint32_t> sums(job.items + 1);
  for (std::size_t i = 0; i < sums.size(); ++i) sums[i] = job.a[i] * 0x01010101U + job.b[i];
  Bytes out(job.items + 1, 0xEE);
  if (job.kernel == 3) kernels.add(sums.data(), job.a, job.items);
  if (job.kernel == 4) kernels.exchange(sums.data(), job.a, job.b, job.items);
  if (job.kernel == 5) kernels.divide(sums.data(), job.window, out.data(), job.items);
  if (job.kernel == 6) {
    Bytes gain(VLM_KPF::kGains);
    for (std::size_t i = 0; i < gain.size(); ++i) {
      gain[i] = static_cast<unsigned char>(i * job.window >> 8);
    }
    kernels.amplify(job.a, job.b, gain.data(), out.data(), job.items);
  }
  const Bytes after = bytesOf(sums);
  out.insert(out.end(), after.begin(), after.end());
  return out;
}

/// The result of one set, or nothing where it does not run here.
Bytes run(Isa isa, const Job& job) {
  const auto* const packing = VX_KPF_PACKED::packKernels.of(isa);
  const auto* const unpacking = KPF_READER::unpackKernels.of(isa);
  const auto* const motion = VLM_KPF::motionKernels.of(isa);
  if (packing == nullptr || unpacking == nullptr || motion == nullptr) return {};
  if (job.kernel <= 1) return pack(*packing, job);
  return job.kernel == 2 ? unpack(*unpacking, job) : amplify(*motion, job);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ::Input input(data, size);
  Job job{};
  job.kernel = input.byte() % 7;
  job.items = input.number(700);
  const std::size_t offset = input.byte() % 64;
  job.window = 1 + input.number(65536) * (1 + input.number(65535));
  const Bytes a = input.bytes(4 * job.items + offset + 1);
  const Bytes b = input.bytes(4 * job.items + offset + 1);
  job.a = a.data() + offset;
  job.b = b.data() + offset;

  const Bytes plain = run(CPU::kAllIsas[0], job);
  for (const Isa isa : CPU::kAllIsas) {
    const Bytes other = run(isa, job);
    FUZZ::require(other.empty() || other == plain, "all kernels give the same bytes");
  }
  return 0;
}

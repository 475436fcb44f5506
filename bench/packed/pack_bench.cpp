// Packing a frame: the kernels alone, and whole frames with their memory.
#include <memory>

#include "bench/support/jobs.h"
#include "packed/vx_kpf_packed.h"
#include "packed/vx_pack_kernels.h"

namespace BENCH {
namespace {

using VX_KPF_PACKED::VxKPFPacked;

/// Bytes read and written: two a pixel in, one and a half out.
std::size_t movedBy12Bits(FrameSize size) { return size.pixels() * 7 / 2; }

Job packJob(FrameSize size) {
  const std::size_t moved = movedBy12Bits(size);
  auto in = std::make_shared<BufferRing>(size.pixels() * 2, moved);
  auto out = std::make_shared<BufferRing>(size.pixels() * 3 / 2, moved);
  return
      [=] { VX_KPF_PACKED::packKernels().packPairs(in->next(), out->next(), size.pixels() / 2); };
}

Job frameJob(FrameSize size, int bitsPerPixel, std::size_t imageSize, std::size_t moved) {
  auto in = std::make_shared<BufferRing>(imageSize, moved);
  return [=] { VxKPFPacked().setTiffImageData(in->next(), size.width, size.height, bitsPerPixel); };
}

void addJobsOf(FrameSize size) {
  const std::size_t moved = movedBy12Bits(size);
  addJob("pack12", size, moved, [=] { return packJob(size); });
  addJob("frame12", size, moved, [=] { return frameJob(size, 12, size.pixels() * 2, moved); });
}

}  // namespace

void addJobs() {
  for (const FrameSize size : kFrameSizes) addJobsOf(size);
}

}  // namespace BENCH

// Packing a frame: into ready memory, and whole with its allocation.
#include <omp.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/jobs.h"
#include "packed/vx_kpf_packed.h"
#include "packed/vx_pack_kernels.h"

namespace BENCH {
namespace {

using VX_KPF_PACKED::VxKPFPacked;

/// Bytes read and written: two a pixel in, one and a half out.
std::size_t movedAt12Bits(FrameSize size) { return size.pixels() * 7 / 2; }

/// Rows of an odd width lose their last pixel and have two bytes of padding.
FrameSize oddOf(FrameSize size) { return {size.width - 1, size.height}; }

Job packJob(FrameSize size) {
  const std::size_t moved = movedAt12Bits(size);
  auto in = std::make_shared<BufferRing>(size.pixels() * 2, moved);
  auto out = std::make_shared<BufferRing>(size.pixels() * 3 / 2, moved);
  return [=] {
    VX_KPF_PACKED::packKernels.inUse().packPairs(in->next(), out->next(), size.pixels() / 2);
  };
}

std::size_t imageSize(FrameSize size, int bitsPerPixel) {
  const std::size_t sampleSize = bitsPerPixel == 8 ? 1 : 2;
  return (size.width * sampleSize + 3) / 4 * 4 * size.height;
}

/// A frame and its memory, new every time as the stream functions have it.
Job newFrameJob(FrameSize size, int bitsPerPixel, std::size_t moved) {
  auto in = std::make_shared<BufferRing>(imageSize(size, bitsPerPixel), moved);
  return [=] { VxKPFPacked().setTiffImageData(in->next(), size.width, size.height, bitsPerPixel); };
}

Job teamJob(FrameSize size, int threads) {
  const Job job = newFrameJob(size, 12, movedAt12Bits(size));
  return [=] {
    omp_set_num_threads(threads);
    job();
    omp_set_num_threads(1);
  };
}

/// Frames that take turns, each with its memory: releasing and taking it again is all they do.
Job readyFrameJob(FrameSize size, int bitsPerPixel, std::size_t moved) {
  auto in = std::make_shared<BufferRing>(imageSize(size, bitsPerPixel), moved);
  auto frames = std::make_shared<std::vector<VxKPFPacked>>(roundsFor(moved));
  return [=, at = std::size_t{0}]() mutable {
    VxKPFPacked& frame = (*frames)[at++ % frames->size()];
    frame.setTiffImageData(in->next(), size.width, size.height, bitsPerPixel);
  };
}

void addJobsOf(FrameSize size) {
  const FrameSize odd = oddOf(size);
  const std::size_t moved = movedAt12Bits(size);
  addJob("pack12", size, moved, [=] { return packJob(size); });
  addJob("pack12-odd", odd, movedAt12Bits(odd),
         [=] { return readyFrameJob(odd, 12, movedAt12Bits(odd)); });
  addJob("frame12", size, moved, [=] { return newFrameJob(size, 12, moved); });
  addJob("rows8", odd, 2 * odd.pixels(), [=] { return readyFrameJob(odd, 8, 2 * odd.pixels()); });
}

}  // namespace

void addJobs() {
  for (const FrameSize size : kFrameSizes) addJobsOf(size);
  for (const FrameSize size : kGrowingSizes) {
    addJob("pack12-growth", size, movedAt12Bits(size), [=] { return packJob(size); });
  }
  constexpr FrameSize kLarge{4096, 3072};
  for (const int threads : {1, 2}) {
    addLoneJob("frame12/threads=" + std::to_string(threads), kLarge, movedAt12Bits(kLarge),
               [=] { return teamJob(kLarge, threads); });
  }
}

}  // namespace BENCH

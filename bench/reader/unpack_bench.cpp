// Unpacking a frame that a reader found.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "bench/support/jobs.h"
#include "reader/kpf_reader.h"

namespace BENCH {
namespace {

Job unpackJob(FrameSize size, std::size_t moved) {
  KPF_READER::Header header;
  header.width = size.width;
  header.height = size.height;
  header.packed12 = true;
  auto in = std::make_shared<BufferRing>(header.frameSize(), moved);
  auto out = std::make_shared<std::vector<std::vector<std::uint16_t>>>(
      roundsFor(moved), std::vector<std::uint16_t>(header.pixelCount()));
  return [=, at = std::size_t{0}]() mutable {
    KPF_READER::unpackPixels(header, {in->next(), header.frameSize()}, (*out)[at++ % out->size()]);
  };
}

}  // namespace

void addJobs() {
  for (const FrameSize size : kFrameSizes) {
    const std::size_t moved = size.pixels() * 7 / 2;
    addJob("unpack12", size, moved, [=] { return unpackJob(size, moved); });
  }
}

}  // namespace BENCH

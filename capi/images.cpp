#include "capi/images.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "capi/calls.h"
#include "packed/vx_pack_kernels.h"
#include "packed/vx_packing_team.h"
#include "reader/kpf_unpack_kernels.h"

namespace KPF_C {
namespace {

// Samples of 16 bits are those of the machine, and the packing reads them lowest byte first.
static_assert(std::endian::native == std::endian::little);

constexpr std::uint32_t kMostPixels = 65535;  // a side; the header has 16 bits for it
constexpr std::size_t kRun = 2048;  // samples that are worked on while they are in the first cache
constexpr unsigned kFreeBits = 4;   // below the 12 of a left-justified sample

/// Samples moved to the left for the packing. @return all of them, or-ed together.
unsigned moveLeft(const unsigned char* in, std::uint16_t* out, std::size_t count) {
  unsigned seen = 0;
  for (std::size_t i = 0; i < count; ++i) {
    std::uint16_t sample = 0;
    std::memcpy(&sample, in + 2 * i, sizeof sample);  // rows need no alignment
    seen |= sample;
    out[i] = static_cast<std::uint16_t>(sample << kFreeBits);
  }
  return seen;
}

unsigned packValues(const unsigned char* row, unsigned char* packed, std::size_t pairs) {
  std::uint16_t run[kRun];
  unsigned seen = 0;
  for (std::size_t first = 0; first < pairs; first += kRun / 2) {
    const std::size_t count = std::min(kRun / 2, pairs - first);
    seen |= moveLeft(row + 4 * first, run, 2 * count);
    VX_KPF_PACKED::packKernels.inUse().packPairs(reinterpret_cast<const unsigned char*>(run),
                                                 packed + 3 * first, count);
  }
  return seen;
}

/// Packs row `y`, and clears what it leaves before the next. @return its samples, or-ed together,
/// where their form is VALUE.
unsigned packRow(const Geometry& geometry, const unsigned char* row, std::uint32_t form,
                 std::size_t y, unsigned char* packed) {
  unsigned char* const out = packed + geometry.rowStart(y);
  if (!geometry.packed12) {
    VX_KPF_PACKED::packKernels.inUse().copyRow(row, out, geometry.width);
    return 0;
  }
  const std::size_t pairs = geometry.width / 2;
  unsigned seen = 0;
  if (form == KPF_SAMPLES_VALUE) {
    seen = packValues(row, out, pairs);
  } else {
    VX_KPF_PACKED::packKernels.inUse().packPairs(row, out, pairs);
  }
  std::fill(out + 3 * pairs, packed + geometry.rowStart(y + 1), static_cast<unsigned char>(0));
  return seen;
}

void unpack8(const Geometry& geometry, const unsigned char* stored, std::uint16_t* samples,
             unsigned left) {
  std::transform(stored, stored + geometry.pixels(), samples,
                 [=](unsigned char pixel) { return static_cast<std::uint16_t>(pixel << left); });
}

/// Rows of an even width follow each other without a gap: the frame is one long run.
void unpack12(const Geometry& geometry, const unsigned char* stored, std::uint16_t* samples,
              std::uint32_t form) {
  const KPF_READER::UnpackKernels& kernels = KPF_READER::unpackKernels.inUse();
  const auto unpack = form == KPF_SAMPLES_VALUE ? kernels.unpackValues : kernels.unpackPairs;
  if (geometry.width % 2 == 0) {
    unpack(stored, samples, geometry.pixels() / 2);
    return;
  }
  for (std::size_t y = 0; y < geometry.height; ++y) {
    std::uint16_t* const row = samples + y * geometry.width;
    unpack(stored + geometry.rowStart(y), row, geometry.width / 2);
    row[geometry.width - 1] = 0;  // never stored
  }
}

}  // namespace

Geometry geometryOf(std::uint32_t width, std::uint32_t height, std::uint32_t bits) {
  require(width >= 1 && width <= kMostPixels, "width must be 1 to 65535");
  require(height >= 1 && height <= kMostPixels, "height must be 1 to 65535");
  require(bits == 8 || bits == 12, "bits must be 8 or 12");
  const Geometry geometry{width, height, bits == 12};
  require(KPF_FORMAT::recordsPerDivFile(KPF_FORMAT::recordSizeOf(geometry.frameSize())) > 0,
          "a frame does not fit a data file of 2 GB");
  return geometry;
}

void requireSamplesForm(std::uint32_t form) {
  require(form == KPF_SAMPLES_VALUE || form == KPF_SAMPLES_LEFT,
          "the form of the samples must be KPF_SAMPLES_VALUE or KPF_SAMPLES_LEFT");
}

std::size_t strideOf(const Geometry& geometry, std::size_t rowStride) {
  if (rowStride == 0) return geometry.rowSize();
  require(rowStride >= geometry.rowSize(), "row_stride is smaller than a row");
  require(rowStride <= std::numeric_limits<std::size_t>::max() / 2 / geometry.height,
          "row_stride is larger than memory");
  return rowStride;
}

bool packImage(const Geometry& geometry, const unsigned char* image, std::size_t stride,
               std::uint32_t form, unsigned char* packed) {
  unsigned seen = 0;
  const bool worthATeam = geometry.pixels() >= VX_KPF_PACKED::kTeamPixels;
#pragma omp parallel for schedule(static) default(none)       \
    shared(geometry, image, stride, form, packed) reduction(| \
                                                            : seen) if (worthATeam)
  for (std::size_t y = 0; y < geometry.height; ++y) {
    seen |= packRow(geometry, image + y * stride, form, y, packed);
  }
  return seen < 1U << (16 - kFreeBits);
}

void unpackFrame(const Geometry& geometry, const unsigned char* packed, std::uint16_t* samples,
                 std::uint32_t form) {
  if (geometry.packed12) {
    unpack12(geometry, packed, samples, form);
  } else {
    unpack8(geometry, packed, samples, form == KPF_SAMPLES_VALUE ? 0 : 8);
  }
}

}  // namespace KPF_C

kpf_result kpf_unpack(uint32_t width, uint32_t height, uint32_t bits, const void* packed,
                      size_t packed_size, uint16_t* samples, size_t count, uint32_t form) {
  return KPF_C::call(__func__, [=] {
    const KPF_C::Geometry geometry = KPF_C::geometryOf(width, height, bits);
    KPF_C::require(packed != nullptr && samples != nullptr, "a buffer is null");
    KPF_C::require(packed_size == geometry.frameSize(), "packed_size is not that of the frame");
    KPF_C::require(count >= geometry.pixels(), "there is room for fewer samples than the frame's");
    KPF_C::requireSamplesForm(form);
    KPF_C::unpackFrame(geometry, static_cast<const unsigned char*>(packed), samples, form);
  });
}

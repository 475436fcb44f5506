#include "motionampl/vx_motion_kernels.h"

#include <algorithm>

namespace VLM_KPF {
namespace {

void add(std::uint32_t* sums, const unsigned char* newest, std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) sums[i] += newest[i];
}

void exchange(std::uint32_t* sums, const unsigned char* newest, const unsigned char* oldest,
              std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) {
    sums[i] += static_cast<std::uint32_t>(newest[i] - oldest[i]);
  }
}

void divide(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
            std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) out[i] = static_cast<unsigned char>(sums[i] / window);
}

void amplify(const unsigned char* frame, const unsigned char* reference, const unsigned char* gain,
             unsigned char* out, std::size_t samples) {
  for (std::size_t i = 0; i < samples; ++i) {
    const int difference = std::max(frame[i] - reference[i], 0);
    out[i] = static_cast<unsigned char>(std::min(frame[i] + gain[difference], 255));
  }
}

constexpr MotionKernels kPlain{add, exchange, divide, amplify};

}  // namespace

const MotionKernels& motionKernels() { return kPlain; }

}  // namespace VLM_KPF

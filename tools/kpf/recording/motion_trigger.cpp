#include "tools/kpf/recording/motion_trigger.h"

#include <algorithm>
#include <cstdint>
#include <new>

#include "vlm_internal.h"

namespace KPF_TOOL {
namespace {

/// A byte a pixel. Of two packed pixels the upper bits are the first and the third byte.
void upperBits(const unsigned char* pixels, bool packed12, std::vector<unsigned char>& out) {
  if (!packed12) {
    std::copy_n(pixels, out.size(), out.begin());
    return;
  }
  for (std::size_t i = 0; i + 1 < out.size(); i += 2, pixels += 3) {
    out[i] = pixels[0];
    out[i + 1] = pixels[2];
  }
}

}  // namespace

MotionTrigger::MotionTrigger(double level, unsigned width, unsigned height, bool packed12)
    : level_(level),
      width_(width),
      height_(height),
      packed12_(packed12),
      reference_(std::size_t{width} * height),
      bytes_(reference_.size()) {
  MotionTrigger::arm();
}

/// The window is told in frames here, and in seconds there: at this rate they are the same.
void MotionTrigger::arm() {
  close();
  VXP_MA_CONFIGURATION parameters{};
  parameters.frameRate = kWindow / 3.0;
  parameters.motionFrequency = 1;
  parameters.width = static_cast<int>(width_);
  parameters.height = static_cast<int>(height_);
  parameters.ampFactor = 1;
  amplifier_ = vxCreateMotionAmplifier(&parameters);
  newest_ = 0;
}

void MotionTrigger::close() {
  if (amplifier_ != 0) vxCloseMotionAmplifier(amplifier_);
  amplifier_ = 0;
}

bool MotionTrigger::fires(const unsigned char* pixels) {
  if (pixels == nullptr) return false;
  upperBits(pixels, packed12_, bytes_);
  // The amplifier takes the frame over, and deletes it when it leaves the window.
  auto* const frame = static_cast<unsigned char*>(::operator new(bytes_.size()));
  std::copy(bytes_.begin(), bytes_.end(), frame);
  if (vxMAAddFrame(amplifier_, frame) != VLM_SUCCESS) ::operator delete(frame);
  if (!vxMAAvailable(amplifier_)) return false;
  vxMAGetRefFrame(amplifier_, reference_.data());
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < bytes_.size(); ++i) {
    sum += static_cast<unsigned>(std::max(bytes_[i] - reference_[i], 0));
  }
  newest_ = static_cast<double>(sum) / static_cast<double>(bytes_.size());
  return newest_ > level_;
}

}  // namespace KPF_TOOL

#include "tools/kpf/frames/amplifier.h"

#include <algorithm>
#include <new>

namespace KPF_TOOL {

Amplifier::Amplifier(const VXP_MA_CONFIGURATION& parameters)
    : size_(static_cast<std::size_t>(parameters.width) *
            static_cast<std::size_t>(parameters.height)),
      handle_(vxCreateMotionAmplifier(&parameters)),
      reference_(size_),
      amplified_(size_) {}

Amplifier::~Amplifier() { vxCloseMotionAmplifier(handle_); }

int Amplifier::windowSize() const { return vxMAGetRefWindowSize(handle_); }

// The library amplifies once one frame less than its window is held, the newest included.
std::uint64_t Amplifier::fillingFrames() const {
  return static_cast<std::uint64_t>(std::max(windowSize() - 2, 0));
}

void Amplifier::add(const std::vector<unsigned char>& frame) {
  // The library takes the frame over and deletes it when it leaves the window.
  auto* const taken = static_cast<unsigned char*>(::operator new(size_));
  std::copy(frame.begin(), frame.end(), taken);
  if (vxMAAddFrame(handle_, taken) != VLM_SUCCESS) ::operator delete(taken);
  available_ = vxMAAvailable(handle_);
  if (available_) {
    vxMAGetFrame(handle_, amplified_.data());
    vxMAGetRefFrame(handle_, reference_.data());
  } else {
    amplified_ = frame;
    reference_ = frame;
  }
}

}  // namespace KPF_TOOL

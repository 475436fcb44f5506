// The exported functions of the motion amplifier.
#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include "interface/vlm_internal_tables.h"
#include "vlm_internal.h"
#include "vx_log.h"

namespace {

using VLM_INTERNAL::HandleState;
using VLM_INTERNAL::maVector;
using VLM_KPF::VxKPFMotionAmpl;
using VX_LOG::VxLogger;

constexpr unsigned kLevel = 7;  // of every line that an exported function logs

/// Looks a handle up; a fault is logged under the caller's name.
VLM_INTERNAL::LookUp<VxKPFMotionAmpl> lookUpAmplifier(unsigned maHandle, const char* function) {
  const auto found = VLM_INTERNAL::lookUp(maVector, maHandle);
  if (found.state == HandleState::kZero) {
    VxLogger::factory()->vx_log(kLevel, "%s: maHandle is nullptr!", function);
  } else if (found.state != HandleState::kLive) {
    VxLogger::factory()->vx_log(kLevel, "%s: maHandle (%p) is invalid!", function,
                                // NOLINTNEXTLINE(performance-no-int-to-ptr): only printed
                                reinterpret_cast<void*>(std::uintptr_t{maHandle}));
  }
  return found;
}

/// The amplifier of a handle, or null once the fault is logged.
VxKPFMotionAmpl* findAmplifier(unsigned maHandle, const char* function) {
  return lookUpAmplifier(maHandle, function).object;
}

}  // namespace

unsigned int vxCreateMotionAmplifier(const VXP_MA_CONFIGURATION* parameters) {
  auto amplifier = std::make_unique<VxKPFMotionAmpl>();
  amplifier->setParameters(parameters->frameRate, parameters->motionFrequency, parameters->width,
                           parameters->height, parameters->ampFactor);
  return VLM_INTERNAL::issueHandle(maVector, std::move(amplifier));
}

int vxCloseMotionAmplifier(unsigned int maHandle) {
  if (findAmplifier(maHandle, __func__) == nullptr) return VLM_BAD_HANDLE;
  VLM_INTERNAL::retireHandle(maVector, maHandle);
  return VLM_MA_CLOSED;
}

// The one function that looks at its other argument before the table, and that words both faults
// of a handle as the stream functions do.
int vxMAAddFrame(unsigned int maHandle, unsigned char* framePtr) {
  if (maHandle == 0) {
    VxLogger::factory()->vx_log(kLevel, "%s: maHandle is 0!", __func__);
    return VLM_BAD_HANDLE;
  }
  if (framePtr == nullptr) {
    VxLogger::factory()->vx_log(kLevel, "%s: framePtr is nullptr!", __func__);
    return VLM_NULL_FRAME;
  }
  VxKPFMotionAmpl* const amplifier = VLM_INTERNAL::lookUp(maVector, maHandle).object;
  if (amplifier == nullptr) {
    VxLogger::factory()->vx_log(kLevel, "%s: maHandle (%d) is invalid!", __func__,
                                static_cast<int>(maHandle));
    return VLM_BAD_HANDLE;
  }
  amplifier->addFrame(framePtr);
  return VLM_SUCCESS;
}

bool vxMAAvailable(unsigned int maHandle) {
  const VxKPFMotionAmpl* const amplifier = findAmplifier(maHandle, __func__);
  return amplifier != nullptr && amplifier->amplifyAvailable();
}

int vxMAGetFrame(unsigned int maHandle, unsigned char* frameOut) {
  VxKPFMotionAmpl* const amplifier = findAmplifier(maHandle, __func__);
  if (amplifier == nullptr) return VLM_BAD_HANDLE;
  if (amplifier->amplifyFrame(frameOut)) return VLM_SUCCESS;
  VxLogger::factory()->vx_log(kLevel, "%s: amplifyFrame() failed!", __func__);
  return VLM_MA_NO_FRAME;
}

int vxMAGetRefFrame(unsigned int maHandle, unsigned char* refOut) {
  VxKPFMotionAmpl* const amplifier = findAmplifier(maHandle, __func__);
  if (amplifier == nullptr) return VLM_BAD_HANDLE;
  return amplifier->getReference(refOut) ? VLM_SUCCESS : VLM_MA_NO_FRAME;
}

int vxMAGetRefWindowSize(unsigned int maHandle) {
  const auto [state, amplifier] = lookUpAmplifier(maHandle, __func__);
  if (state == HandleState::kLive) return amplifier->refWindowSize;
  return state == HandleState::kEmpty ? VLM_BAD_HANDLE : 0;
}

void vxMAUpdateAmpFactor(unsigned int maHandle, int ampFactor) {
  VxKPFMotionAmpl* const amplifier = findAmplifier(maHandle, __func__);
  if (amplifier == nullptr) return;
  // Another thread may be amplifying: it reads the old factor or the new one, whole.
  std::atomic_ref(amplifier->ampFactor).store(ampFactor, std::memory_order_relaxed);
}

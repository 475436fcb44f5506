// The exported functions of the motion amplifier: handles are looked up, arguments checked, results
// passed on.
#include "vlm_internal.h"

#include <atomic>
#include <memory>
#include <utility>

#include "interface/handle_faults.h"
#include "interface/vlm_internal_tables.h"
#include "motionampl/vx_kpf_motionampl.h"
#include "vx_log.h"

namespace {

using VLM_INTERNAL::HandleState;
using VLM_INTERNAL::maVector;
using VLM_KPF::VxKPFMotionAmpl;
using VX_LOG::VxLogger;

constexpr VLM_INTERNAL::HandleWording kMaHandle{"maHandle", true};
constexpr VLM_INTERNAL::HandleWording kMaHandleOfAddFrame{"maHandle", false};

/// The amplifier of a handle, or null once the fault is logged under the caller's name.
VxKPFMotionAmpl* findAmplifier(unsigned maHandle, const char* function) {
  return VLM_INTERNAL::lookUpOrLog(maVector, maHandle, kMaHandle, function).object;
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

// The one function that looks at its other argument before the table.
int vxMAAddFrame(unsigned int maHandle, unsigned char* framePtr) {
  if (maHandle == 0) {
    VLM_INTERNAL::logFault(HandleState::kZero, maHandle, kMaHandleOfAddFrame, __func__);
    return VLM_BAD_HANDLE;
  }
  if (framePtr == nullptr) {
    VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: framePtr is nullptr!", __func__);
    return VLM_NULL_FRAME;
  }
  VxKPFMotionAmpl* const amplifier =
      VLM_INTERNAL::lookUpOrLog(maVector, maHandle, kMaHandleOfAddFrame, __func__).object;
  if (amplifier == nullptr) return VLM_BAD_HANDLE;
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
  VxLogger::factory()->vx_log(VX_LOG::kDebug, "%s: amplifyFrame() failed!", __func__);
  return VLM_MA_NO_FRAME;
}

int vxMAGetRefFrame(unsigned int maHandle, unsigned char* refOut) {
  VxKPFMotionAmpl* const amplifier = findAmplifier(maHandle, __func__);
  if (amplifier == nullptr) return VLM_BAD_HANDLE;
  return amplifier->getReference(refOut) ? VLM_SUCCESS : VLM_MA_NO_FRAME;
}

int vxMAGetRefWindowSize(unsigned int maHandle) {
  const auto [state, amplifier] =
      VLM_INTERNAL::lookUpOrLog(maVector, maHandle, kMaHandle, __func__);
  if (state == HandleState::kLive) return amplifier->refWindowSize;
  return state == HandleState::kEmpty ? VLM_BAD_HANDLE : 0;
}

void vxMAUpdateAmpFactor(unsigned int maHandle, int ampFactor) {
  VxKPFMotionAmpl* const amplifier = findAmplifier(maHandle, __func__);
  if (amplifier == nullptr) return;
  // Another thread may be amplifying: it reads the old factor or the new one, whole.
  std::atomic_ref(amplifier->ampFactor).store(ampFactor, std::memory_order_relaxed);
}

// The exported functions of amplifying.
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "capi/calls.h"
#include "capi/handles.h"
#include "capi/images.h"
#include "capi/structs.h"
#include "motionampl/vx_kpf_motionampl.h"

namespace {

using KPF_C::call;
using KPF_C::Failure;
using KPF_C::require;

// The sums of a window have 32 bits: so many frames of 255 still fit.
constexpr std::uint32_t kLargestWindow = std::numeric_limits<std::uint32_t>::max() / 255;

struct Amplifier {
  KPF_C::Geometry geometry;
  VLM_KPF::VxKPFMotionAmpl window;
};

KPF_C::Handles<kpf_amplifier, Amplifier>& amplifiers() {
  static auto& table = *new KPF_C::Handles<kpf_amplifier, Amplifier>;
  return table;
}

void check(const kpf_amplifier_options& options) {
  require(options.reserved == 0, "reserved must be 0");
  require(std::isfinite(options.frame_rate) && options.frame_rate > 0,
          "frame_rate must be above 0");
  require(std::isfinite(options.motion_frequency) && options.motion_frequency > 0 &&
              options.motion_frequency <= options.frame_rate,
          "motion_frequency must be above 0 and at most frame_rate");
  require(3 * (options.frame_rate / options.motion_frequency) <= kLargestWindow,
          "motion_frequency is so low that the window's sums would overflow");
  require(std::isfinite(options.gain), "gain must be a finite number");
}

KPF_C::Geometry checkedGeometry(const kpf_amplifier_options& options) {
  const KPF_C::Geometry geometry = KPF_C::geometryOf(options.width, options.height, 8);
  require(geometry.pixels() <= std::numeric_limits<std::int32_t>::max(),
          "width x height must be below 2^31");
  return geometry;
}

/// Owns a frame until the window takes it.
struct Release {
  void operator()(unsigned char* frame) const { ::operator delete(frame); }
};
using Frame = std::unique_ptr<unsigned char, Release>;

Frame copyOf(const KPF_C::Geometry& geometry, const unsigned char* pixels, std::size_t stride) {
  Frame frame(static_cast<unsigned char*>(::operator new(geometry.pixels())));
  for (std::size_t y = 0; y < geometry.height; ++y) {
    std::memcpy(frame.get() + y * geometry.width, pixels + y * stride, geometry.width);
  }
  return frame;
}

/// Fills `pixels` by `deliver`, one of the window's two.
kpf_result deliver(const char* function, kpf_amplifier* amplifier, void* pixels, std::size_t size,
                   bool (VLM_KPF::VxKPFMotionAmpl::*deliver)(unsigned char*)) noexcept {
  return call(function, [=] {
    const auto found = amplifiers().find(amplifier);
    require(pixels != nullptr, "pixels is null");
    require(size >= found->geometry.pixels(), "there is room for fewer pixels than the frame's");
    if (found->window.amplifyAvailable() &&
        (found->window.*deliver)(static_cast<unsigned char*>(pixels))) {
      return;
    }
    throw Failure(KPF_ERROR_NOT_READY, "too few frames have been added");
  });
}

}  // namespace

kpf_result kpf_amplifier_create(const kpf_amplifier_options* options, kpf_amplifier** amplifier) {
  return call(__func__, [=] {
    require(amplifier != nullptr, "amplifier is null");
    const kpf_amplifier_options known = KPF_C::taken(options);
    check(known);
    const auto made = std::make_shared<Amplifier>();
    made->geometry = checkedGeometry(known);
    made->window.setParameters(known.frame_rate, known.motion_frequency,
                               static_cast<std::int32_t>(known.width),
                               static_cast<std::int32_t>(known.height), known.gain);
    *amplifier = amplifiers().issue(made);
  });
}

kpf_result kpf_amplifier_window(kpf_amplifier* amplifier, uint32_t* frames) {
  return call(__func__, [=] {
    const auto found = amplifiers().find(amplifier);
    require(frames != nullptr, "frames is null");
    *frames = static_cast<uint32_t>(found->window.refWindowSize - 1);
  });
}

kpf_result kpf_amplifier_add(kpf_amplifier* amplifier, const void* pixels, size_t row_stride) {
  return call(__func__, [=] {
    const auto found = amplifiers().find(amplifier);
    require(pixels != nullptr, "pixels is null");
    const std::size_t stride = KPF_C::strideOf(found->geometry, row_stride);
    Frame frame = copyOf(found->geometry, static_cast<const unsigned char*>(pixels), stride);
    found->window.addFrame(frame.get());
    static_cast<void>(frame.release());  // the window's, now that nothing was thrown
  });
}

kpf_result kpf_amplifier_available(kpf_amplifier* amplifier, uint32_t* available) {
  return call(__func__, [=] {
    const auto found = amplifiers().find(amplifier);
    require(available != nullptr, "available is null");
    *available = found->window.amplifyAvailable() ? 1 : 0;
  });
}

kpf_result kpf_amplifier_get(kpf_amplifier* amplifier, void* pixels, size_t size) {
  return deliver(__func__, amplifier, pixels, size, &VLM_KPF::VxKPFMotionAmpl::amplifyFrame);
}

kpf_result kpf_amplifier_reference(kpf_amplifier* amplifier, void* pixels, size_t size) {
  return deliver(__func__, amplifier, pixels, size, &VLM_KPF::VxKPFMotionAmpl::getReference);
}

kpf_result kpf_amplifier_set_gain(kpf_amplifier* amplifier, double gain) {
  return call(__func__, [=] {
    const auto found = amplifiers().find(amplifier);
    require(std::isfinite(gain), "gain must be a finite number");
    // Another thread may be amplifying: it reads the old gain or the new one, whole.
    std::atomic_ref(found->window.ampFactor).store(gain, std::memory_order_relaxed);
  });
}

kpf_result kpf_amplifier_destroy(kpf_amplifier* amplifier) {
  return call(__func__, [=] { amplifiers().retire(amplifier); });
}

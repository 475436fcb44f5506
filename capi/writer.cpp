// The exported functions of writing.
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "capi/calls.h"
#include "capi/handles.h"
#include "capi/names.h"
#include "capi/recorder.h"
#include "capi/replacing.h"
#include "capi/structs.h"
#include "format/kpf_layout.h"

namespace {

using KPF_C::call;
using KPF_C::Recorder;
using KPF_C::require;

// Never destroyed: what is still open when the process ends stays as a killed process leaves it.
KPF_C::Handles<kpf_writer, Recorder>& writers() {
  static auto& table = *new KPF_C::Handles<kpf_writer, Recorder>;
  return table;
}

constexpr uint32_t kMostFramesASecond = std::numeric_limits<int>::max();

void checkText(const char* text, std::size_t room, const char* problem) {
  require(text == nullptr || std::strlen(text) <= room, problem);
}

void check(const kpf_writer_options& options) {
  namespace layout = KPF_FORMAT::HEADER;
  require(options.frame_rate >= 1 && options.frame_rate <= kMostFramesASecond,
          "frame_rate must be 1 to 2147483647, whole frames per second");
  require(options.frame_count != KPF_FRAMES_UNKNOWN, "frame_count is too large; 0 for not known");
  require(options.start_seconds >= 0, "start_seconds is negative");
  require(options.start_microseconds < 1000000, "start_microseconds must be 0 to 999999");
  require(options.replace <= 1 && options.durable <= 1, "replace and durable must be 0 or 1");
  require(options.value5 >= 0 && options.value5 <= 2, "value5 must be 0, 1 or 2");
  require(options.reserved == 0, "reserved must be 0");
  KPF_C::requireSamplesForm(options.samples);
  checkText(options.text5, layout::kText5.size, "text5 is longer than 151 bytes");
  checkText(options.text2, layout::kText2.size, "text2 is longer than 60 bytes");
  KPF_C::geometryOf(options.width, options.height, options.bits);
}

/// Adds a frame to the writer's recording; whatever keeps it from a place is counted.
template <class Add>
kpf_result addTo(kpf_writer* writer, const char* function, Add add) noexcept {
  return call(function, [&] {
    const auto recorder = writers().find(writer);
    const uint32_t place = recorder->counts().added;
    try {
      add(*recorder);
    } catch (...) {
      if (recorder->counts().added == place) recorder->countRefused();
      throw;
    }
  });
}

}  // namespace

kpf_result kpf_writer_create(const char* name, const kpf_writer_options* options,
                             kpf_writer** writer) {
  return call(__func__, [=] {
    require(writer != nullptr, "writer is null");
    const kpf_writer_options known = KPF_C::taken(options);
    check(known);
    const std::string path = KPF_C::recordingName(name);
    KPF_C::makeWay(path, known.replace != 0);
    *writer = writers().issue(std::make_shared<Recorder>(path, known));
  });
}

kpf_result kpf_writer_add_image(kpf_writer* writer, const void* pixels, size_t row_stride,
                                const kpf_stamp* stamp) {
  return addTo(writer, __func__, [=](Recorder& recorder) {
    recorder.addImage(static_cast<const unsigned char*>(pixels), row_stride, stamp);
  });
}

kpf_result kpf_writer_add_packed(kpf_writer* writer, const void* pixels, size_t size,
                                 const kpf_stamp* stamp) {
  return addTo(writer, __func__, [=](Recorder& recorder) {
    recorder.addPacked(static_cast<const unsigned char*>(pixels), size, stamp);
  });
}

kpf_result kpf_writer_add_lost(kpf_writer* writer) {
  return addTo(writer, __func__, [](Recorder& recorder) { recorder.addLost(); });
}

kpf_result kpf_writer_statistics(kpf_writer* writer, kpf_writer_counts* counts) {
  return call(__func__, [=] {
    const auto recorder = writers().find(writer);
    KPF_C::requireRoom(counts);
    KPF_C::give(recorder->counts(), counts);
  });
}

kpf_result kpf_writer_close(kpf_writer* writer, kpf_writer_counts* counts) {
  return call(__func__, [=] {
    if (counts != nullptr) KPF_C::requireRoom(counts);
    const auto recorder = writers().retire(writer);
    if (counts != nullptr) KPF_C::give(recorder->counts(), counts);
    recorder->close();
  });
}

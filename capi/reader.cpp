// The exported functions of reading.
#include <memory>
#include <string>

#include "capi/calls.h"
#include "capi/handles.h"
#include "capi/names.h"
#include "capi/structs.h"
#include "capi/viewer.h"

namespace {

using KPF_C::call;
using KPF_C::require;
using KPF_C::Viewer;

// Never destroyed: pixels that somebody still holds stay readable to the end of the process.
KPF_C::Handles<kpf_reader, Viewer>& readers() {
  static auto& table = *new KPF_C::Handles<kpf_reader, Viewer>;
  return table;
}

KPF_READER::Access accessOf(const kpf_reader_options* options) {
  if (options == nullptr) return KPF_READER::Access::kSequential;
  const kpf_reader_options known = KPF_C::taken(options);
  require(known.access == KPF_ACCESS_SEQUENTIAL || known.access == KPF_ACCESS_SPARSE,
          "access must be KPF_ACCESS_SEQUENTIAL or KPF_ACCESS_SPARSE");
  return known.access == KPF_ACCESS_SPARSE ? KPF_READER::Access::kSparse
                                           : KPF_READER::Access::kSequential;
}

}  // namespace

kpf_result kpf_reader_open(const char* name, const kpf_reader_options* options,
                           kpf_reader** reader) {
  return call(__func__, [=] {
    require(reader != nullptr, "reader is null");
    const KPF_READER::Access access = accessOf(options);
    const std::string path = KPF_C::recordingName(name);
    *reader = readers().issue(std::make_shared<Viewer>(path, access));
  });
}

kpf_result kpf_reader_describe(kpf_reader* reader, kpf_recording_info* info) {
  return call(__func__, [=] {
    const auto viewer = readers().find(reader);
    KPF_C::requireRoom(info);
    KPF_C::give(viewer->describe(), info);
  });
}

kpf_result kpf_reader_frame(kpf_reader* reader, uint32_t n, kpf_frame* frame) {
  return call(__func__, [=] {
    const auto viewer = readers().find(reader);
    KPF_C::requireRoom(frame);
    KPF_C::give(viewer->frame(n), frame);
  });
}

kpf_result kpf_reader_unpack(kpf_reader* reader, uint32_t n, uint16_t* samples, size_t count,
                             uint32_t form) {
  return call(__func__, [=] { readers().find(reader)->unpack(n, samples, count, form); });
}

kpf_result kpf_reader_data_file(kpf_reader* reader, uint32_t file_number, const char** path) {
  return call(__func__, [=] {
    const auto viewer = readers().find(reader);
    require(path != nullptr, "path is null");
    *path = viewer->dataFile(file_number);
  });
}

kpf_result kpf_reader_refresh(kpf_reader* reader) {
  return call(__func__, [=] { readers().find(reader)->refresh(); });
}

kpf_result kpf_reader_close(kpf_reader* reader) {
  return call(__func__, [=] { readers().retire(reader); });
}

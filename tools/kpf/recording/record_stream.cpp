#include "tools/kpf/recording/record_stream.h"

#include <filesystem>
#include <system_error>

#include "format/kpf_status.h"

namespace KPF_TOOL {

LibraryStream::LibraryStream(const std::string& name,
                             const VLM_INTERNAL::VXP_STREAM_CONFIGURATION& configuration)
    : name_(name), handle_(vxCreatePackStreamer(name, configuration)), id_(fileId(name)) {}

// What goes wrong the library logs, see CapturedOutput; the results of these calls say less.
void LibraryStream::addImage(const unsigned char* image) { vxAddTiffImageData(handle_, image); }

void LibraryStream::addRecord(const unsigned char* record) { vxAddPackedData(handle_, record); }

void LibraryStream::addPlaceholder() { vxAddPlaceholder(handle_); }

void LibraryStream::close() {
  if (handle_ != 0) vxClosePackStreamer(handle_);
  handle_ = 0;
}

bool LibraryStream::announce(std::uint64_t frames, bool whole) const {
  // Whatever bears the name now is not to be told the number of another's frames.
  if (!isThere()) return false;
  if (!KPF_FORMAT::writeFrameCount(name_, static_cast<std::uint32_t>(frames))) return false;
  std::error_code notThere;
  if (whole) std::filesystem::remove(KPF_FORMAT::statusFileName(name_), notThere);
  return true;
}

}  // namespace KPF_TOOL

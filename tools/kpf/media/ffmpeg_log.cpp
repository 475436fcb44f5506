#include "tools/kpf/media/ffmpeg_log.h"

#include <atomic>
#include <cstdarg>
#include <string_view>

#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {
namespace {

std::atomic<std::uint64_t> errors;
std::atomic<std::uint64_t> earlyEnds;

void count(void*, int level, const char* format, va_list) {
  const std::string_view line(format);
  if (line.starts_with("File ended prematurely")) ++earlyEnds;
  // Many a camera's JPEG has an odd remark in front of a picture that is whole.
  if (level > AV_LOG_ERROR || line.starts_with("unable to decode APP")) return;
  ++errors;
}

}  // namespace

void listenToFFmpeg() { av_log_set_callback(count); }

LogCounts logCounts() { return {errors, earlyEnds}; }

}  // namespace KPF_TOOL

#include "tools/kpf/media/ffmpeg_log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string_view>

#include "tools/kpf/media/ffmpeg.h"

namespace KPF_TOOL {
namespace {

std::atomic<std::uint64_t> errors;
std::atomic<std::uint64_t> ofContainers;
std::atomic<std::uint64_t> earlyEnds;
std::mutex mutex;
std::string latest;  // of ofContainers

bool isContainer(void* speaker) {
  if (speaker == nullptr) return false;
  const AVClass* const kind = *static_cast<AVClass**>(speaker);
  if (kind == nullptr) return false;
  const AVClassCategory category =
      kind->get_category != nullptr ? kind->get_category(speaker) : kind->category;
  return category == AV_CLASS_CATEGORY_DEMUXER;
}

void keep(const char* format, va_list values) {
  char text[200] = "";
  std::vsnprintf(text, sizeof text, format, values);
  const std::lock_guard lock(mutex);
  latest = text;
  while (!latest.empty() && latest.back() == '\n') latest.pop_back();
}

void count(void* speaker, int level, const char* format, va_list values) {
  const std::string_view line(format);
  if (line.starts_with("File ended prematurely")) ++earlyEnds;
  // Many a camera's JPEG has an odd remark in front of a picture that is whole.
  if (level > AV_LOG_ERROR || line.starts_with("unable to decode APP")) return;
  ++errors;
  if (!isContainer(speaker)) return;
  ++ofContainers;
  keep(format, values);
}

}  // namespace

void listenToFFmpeg() { av_log_set_callback(count); }

LogCounts logCounts() { return {errors, ofContainers, earlyEnds}; }

std::string latestOfContainers() {
  const std::lock_guard lock(mutex);
  return latest;
}

}  // namespace KPF_TOOL

#include "tools/kpf/recording/timed_stream.h"

#include <utility>

namespace KPF_TOOL {

std::chrono::nanoseconds TimedStream::now() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

TimedStream::TimedStream(RecordStream& stream, double rate, Clock clock)
    : stream_(stream), rate_(rate), clock_(std::move(clock)) {}

void TimedStream::addImage(const unsigned char* image) {
  const std::chrono::nanoseconds begin = clock_();
  note(begin);
  stream_.addImage(image);
  calls_.add(clock_() - begin);
}

void TimedStream::addPlaceholder() {
  const std::chrono::nanoseconds begin = clock_();
  stream_.addPlaceholder();
  calls_.add(clock_() - begin);
  ++places_;
}

void TimedStream::note(std::chrono::nanoseconds arrival) {
  ++places_;
  if (previous_) {
    const double waited = std::chrono::duration<double>(arrival - *previous_).count();
    if (waited * rate_ > places_ + 1) ++late_;
  }
  previous_ = arrival;
  places_ = 0;
}

}  // namespace KPF_TOOL

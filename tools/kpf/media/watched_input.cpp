#include "tools/kpf/media/watched_input.h"

namespace KPF_TOOL {
namespace {

constexpr int kBuffer = 1 << 15;

}  // namespace

int WatchedInput::open(const std::string& url, const AVIOInterruptCB& interrupt) {
  AVIOContext* source = nullptr;
  const int result = avio_open2(&source, url.c_str(), AVIO_FLAG_READ, &interrupt, nullptr);
  if (result < 0) return result;
  source_.reset(source);
  auto* const buffer = static_cast<unsigned char*>(av_malloc(kBuffer));
  io_.reset(avio_alloc_context(buffer, kBuffer, 0, this, read, nullptr, isPipe() ? nullptr : seek));
  return 0;
}

int WatchedInput::read(void* self, std::uint8_t* into, int size) {
  auto& input = *static_cast<WatchedInput*>(self);
  const int got = avio_read_partial(input.source_.get(), into, size);
  if (got > 0) input.note(into, static_cast<std::size_t>(got));
  return got == 0 ? AVERROR_EOF : got;
}

std::int64_t WatchedInput::seek(void* self, std::int64_t offset, int whence) {
  auto& input = *static_cast<WatchedInput*>(self);
  if ((whence & AVSEEK_SIZE) != 0) return avio_size(input.source_.get());
  const std::int64_t result = avio_seek(input.source_.get(), offset, whence & ~AVSEEK_FORCE);
  if (result >= 0) input.position_ = static_cast<std::uint64_t>(result);
  return result;
}

void WatchedInput::note(const std::uint8_t* bytes, std::size_t count) {
  const auto* const text = reinterpret_cast<const char*>(bytes);
  if (position_ == head_.size()) head_.append(text, std::min(count, kHead - head_.size()));
  position_ += count;
  if (!isPipe()) return;
  tail_.append(text, count);
  if (tail_.size() > 2 * kTail) tail_.erase(0, tail_.size() - kTail);
}

std::uint64_t WatchedInput::size() const {
  if (source_ == nullptr) return 0;
  if (isPipe()) return position_;
  return static_cast<std::uint64_t>(std::max<std::int64_t>(avio_size(source_.get()), 0));
}

std::string WatchedInput::from(std::uint64_t offset) const {
  if (isPipe()) {
    const std::uint64_t kept = position_ - tail_.size();
    if (offset < kept || offset > position_) return "";
    return tail_.substr(static_cast<std::size_t>(offset - kept), kTail);
  }
  std::string bytes(kTail, '\0');
  const std::int64_t before = avio_tell(source_.get());
  int got = -1;
  if (avio_seek(source_.get(), static_cast<std::int64_t>(offset), SEEK_SET) >= 0) {
    got = avio_read(source_.get(), reinterpret_cast<unsigned char*>(bytes.data()),
                    static_cast<int>(bytes.size()));
  }
  avio_seek(source_.get(), before, SEEK_SET);
  bytes.resize(static_cast<std::size_t>(std::max(got, 0)));
  return bytes;
}

}  // namespace KPF_TOOL

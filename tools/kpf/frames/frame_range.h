// The frames that a user asks for.
#ifndef KPF_FRAME_RANGE_H
#define KPF_FRAME_RANGE_H

#include <cstdint>
#include <optional>

namespace KPF_TOOL {

/// Frames `from` to `to`, both included, counted from 0; without them from the first, to the last.
struct FrameRange {
  std::optional<std::uint64_t> from;
  std::optional<std::uint64_t> to;

  std::uint64_t first() const { return from.value_or(0); }

  /// Whether `frame` lies behind the range, where nothing more is to be read.
  bool endsBefore(std::uint64_t frame) const { return to && frame > *to; }

  /// Whether the range asks for `frame`.
  bool holds(std::uint64_t frame) const { return frame >= first() && !endsBefore(frame); }

  /// How many of `count` frames the range asks for.
  std::uint64_t framesOf(std::uint64_t count) const {
    // One is added only where the sum is known to fit.
    const std::uint64_t end = to && *to < count ? *to + 1 : count;
    return first() < end ? end - first() : 0;
  }
};

}  // namespace KPF_TOOL

#endif

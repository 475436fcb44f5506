#include "tools/kpf/frames/frames_before.h"

namespace KPF_TOOL {
namespace {

/// Goes to the frame before `first`; false where there is none.
bool goBefore(FrameSource& source, std::uint64_t first) {
  if (first == 0) return false;
  source.skip(first - 1);
  return source.next();
}

}  // namespace

std::vector<unsigned char> frameBefore(FrameSource& source, std::uint64_t first) {
  std::vector<unsigned char> rows(source.frameSize());
  bool there = goBefore(source, first);
  while (there && source.lost()) there = source.back();
  if (there) source.copyTo(rows.data(), source.rowSize());
  return rows;
}

std::uint64_t startOfFramesBefore(FrameSource& source, std::uint64_t first, std::uint64_t wanted) {
  std::uint64_t start = first;
  for (bool there = wanted > 0 && goBefore(source, first); there;
       there = wanted > 0 && source.back()) {
    --start;
    if (!source.lost()) --wanted;
  }
  return start;
}

}  // namespace KPF_TOOL

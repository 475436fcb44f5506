#include "memory/vx_frame_memory.h"

#include <new>
#include <utility>

namespace VX_FRAME_MEMORY {
namespace {

// Allocators keep smaller blocks themselves and map larger ones anew for every request.
constexpr std::size_t kSmallestKept = std::size_t{128} << 10;

}  // namespace

FrameMemory SpareFrame::allocate(std::size_t size) {
  unsigned char* memory = size >= kSmallestKept ? take(size) : nullptr;
  if (memory == nullptr) memory = static_cast<unsigned char*>(::operator new(size));
  return FrameMemory(memory, FrameMemoryRelease{this, size});
}

void FrameMemoryRelease::operator()(unsigned char* memory) const noexcept {
  if (size >= kSmallestKept) memory = spare->swap(memory, size);
  ::operator delete(memory);
}

unsigned char* SpareFrame::take(std::size_t size) {
  const std::lock_guard lock(mutex_);
  return size_ == size ? std::exchange(memory_, nullptr) : nullptr;
}

/// Keeps `memory` and gives back what was kept before.
unsigned char* SpareFrame::swap(unsigned char* memory, std::size_t size) {
  const std::lock_guard lock(mutex_);
  size_ = size;
  return std::exchange(memory_, memory);
}

}  // namespace VX_FRAME_MEMORY

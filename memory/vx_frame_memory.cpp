#include "memory/vx_frame_memory.h"

#include <cstring>
#include <new>

namespace VX_FRAME_MEMORY {
namespace {

// Allocators keep smaller blocks themselves and map larger ones anew for every request.
constexpr std::size_t kSmallestKept = std::size_t{128} << 10;
static_assert(kSmallestKept >= sizeof(std::size_t), "a block that is kept has room for its size");

std::size_t sizeOf(const unsigned char* kept) {
  std::size_t size = 0;
  std::memcpy(&size, kept, sizeof size);
  return size;
}

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

/// The block kept when it has that size. Any other goes: what is released next takes its place.
unsigned char* SpareFrame::take(std::size_t size) {
  unsigned char* const memory = kept_.exchange(nullptr);
  if (memory == nullptr || sizeOf(memory) == size) return memory;
  ::operator delete(memory);
  return nullptr;
}

/// Keeps `memory` and gives back what was kept before.
unsigned char* SpareFrame::swap(unsigned char* memory, std::size_t size) {
  std::memcpy(memory, &size, sizeof size);
  return kept_.exchange(memory);
}

}  // namespace VX_FRAME_MEMORY

#include "packed/vx_frame_memory.h"

#include <mutex>
#include <new>
#include <utility>

namespace VX_KPF_PACKED {
namespace {

// Allocators keep smaller blocks themselves and map larger ones anew for every request.
constexpr std::size_t kKeptFrom = std::size_t{128} << 10;

struct SpareBlock {
  ~SpareBlock() { ::operator delete(memory); }

  std::mutex mutex;
  unsigned char* memory = nullptr;
  std::size_t size = 0;
};

// Made before, and destroyed after, every static object that may hold a frame.
[[gnu::init_priority(101)]] SpareBlock spare;

unsigned char* takeSpare(std::size_t size) {
  const std::lock_guard lock(spare.mutex);
  return spare.size == size ? std::exchange(spare.memory, nullptr) : nullptr;
}

unsigned char* swapSpare(unsigned char* memory, std::size_t size) {
  const std::lock_guard lock(spare.mutex);
  spare.size = size;
  return std::exchange(spare.memory, memory);
}

}  // namespace

void FrameMemoryRelease::operator()(unsigned char* memory) const noexcept {
  if (size >= kKeptFrom) memory = swapSpare(memory, size);
  ::operator delete(memory);
}

FrameMemory allocateFrameMemory(std::size_t size) {
  unsigned char* memory = size >= kKeptFrom ? takeSpare(size) : nullptr;
  if (memory == nullptr) memory = static_cast<unsigned char*>(::operator new(size));
  return FrameMemory(memory, FrameMemoryRelease{size});
}

}  // namespace VX_KPF_PACKED

// Memory of the size of a frame, handed on from one frame to the next.
#ifndef VX_FRAME_MEMORY_H
#define VX_FRAME_MEMORY_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <type_traits>

namespace VX_FRAME_MEMORY {

class SpareFrame;

struct FrameMemoryRelease {
  SpareFrame* spare = nullptr;
  std::size_t size = 0;
  void operator()(unsigned char* memory) const noexcept;
};

using FrameMemory = std::unique_ptr<unsigned char[], FrameMemoryRelease>;

/**
 * Allocates the frames of one purpose and keeps the large block that was released last.
 *
 * The next frame of that size gets it: a block returned to the system is faulted in again page by
 * page, which takes longer than the work on the frame. One object for a purpose, in static storage,
 * serves any thread. It is ready before any constructor runs and never destroyed: frames may come
 * and go until the process is no more, in a thread that nobody ended as in the destructor of
 * another static object.
 */
class SpareFrame {
 public:
  constexpr SpareFrame() = default;
  SpareFrame(const SpareFrame&) = delete;
  SpareFrame& operator=(const SpareFrame&) = delete;

  /// `size` bytes of undefined content, never null.
  FrameMemory allocate(std::size_t size);

 private:
  friend FrameMemoryRelease;
  unsigned char* take(std::size_t size);
  unsigned char* swap(unsigned char* memory, std::size_t size);

  // The block kept, or null; its size stands in its first bytes. Who takes the pointer out owns it.
  std::atomic<unsigned char*> kept_{nullptr};
};
static_assert(std::is_trivially_destructible_v<SpareFrame>);

}  // namespace VX_FRAME_MEMORY

#endif

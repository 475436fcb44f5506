// Memory of the size of a frame, handed on from one frame to the next.
#ifndef VX_FRAME_MEMORY_H
#define VX_FRAME_MEMORY_H

#include <cstddef>
#include <memory>
#include <mutex>

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
 * outlives all its frames and serves any thread.
 */
class SpareFrame {
 public:
  SpareFrame() = default;
  ~SpareFrame() { ::operator delete(memory_); }
  SpareFrame(const SpareFrame&) = delete;
  SpareFrame& operator=(const SpareFrame&) = delete;

  /// `size` bytes of undefined content, never null.
  FrameMemory allocate(std::size_t size);

 private:
  friend FrameMemoryRelease;
  unsigned char* take(std::size_t size);
  unsigned char* swap(unsigned char* memory, std::size_t size);

  std::mutex mutex_;  // guards both
  unsigned char* memory_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace VX_FRAME_MEMORY

#endif

// Memory for the pixels of one frame, handed from frame to frame.
#ifndef VX_FRAME_MEMORY_H
#define VX_FRAME_MEMORY_H

#include <cstddef>
#include <memory>

namespace VX_KPF_PACKED {

struct FrameMemoryRelease {
  std::size_t size = 0;
  void operator()(unsigned char* memory) const noexcept;
};

using FrameMemory = std::unique_ptr<unsigned char[], FrameMemoryRelease>;

/**
 * `size` bytes of undefined content, never null.
 *
 * A large block that a frame releases is kept, one for the whole process, and given to the next
 * frame of that size: a block returned to the system is faulted in again page by page, which takes
 * longer than packing the frame. Safe on any thread.
 */
FrameMemory allocateFrameMemory(std::size_t size);

}  // namespace VX_KPF_PACKED

#endif

// In a file of its own: inlined into their callers, the operators would look mismatched to GCC.
#include "tests/motionampl/watched_memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace TEST_MOTIONAMPL {

WatchedMemory watchedMemory;

namespace {

void* allocate(std::size_t size) {
  return watchedMemory.refusing ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void release(void* block, int& count) {
  if (block != nullptr && block == watchedMemory.block) ++count;
  std::free(block);
}

}  // namespace
}  // namespace TEST_MOTIONAMPL

using TEST_MOTIONAMPL::watchedMemory;

void* operator new(std::size_t size) {
  void* const block = TEST_MOTIONAMPL::allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* operator new[](std::size_t size) { return operator new(size); }

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return TEST_MOTIONAMPL::allocate(size);
}

void operator delete(void* block) noexcept {
  TEST_MOTIONAMPL::release(block, watchedMemory.releases);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
  TEST_MOTIONAMPL::release(block, watchedMemory.otherReleases);
}

void operator delete[](void* block) noexcept {
  TEST_MOTIONAMPL::release(block, watchedMemory.otherReleases);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept {
  TEST_MOTIONAMPL::release(block, watchedMemory.otherReleases);
}

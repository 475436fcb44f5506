// Replaces the allocation of a whole program, to see how a block is released and to refuse memory.
#ifndef TESTS_MOTIONAMPL_WATCHED_MEMORY_H
#define TESTS_MOTIONAMPL_WATCHED_MEMORY_H

namespace TEST_MOTIONAMPL {

struct WatchedMemory {
  bool refusing = false;        // every allocation fails
  const void* block = nullptr;  // whose releases are counted
  int releases = 0;             // by the scalar form without a size
  int otherReleases = 0;        // by any other form
};

extern WatchedMemory watchedMemory;

}  // namespace TEST_MOTIONAMPL

#endif

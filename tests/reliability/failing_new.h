// The allocator of a program in which memory runs out on demand.
#ifndef FAILING_NEW_H
#define FAILING_NEW_H

namespace FAILING_NEW {

/// From now on the n-th allocation throws std::bad_alloc, once; 0: none does.
void failAt(long n);

/// Blocks that are allocated and not yet freed.
long liveBlocks();

}  // namespace FAILING_NEW

#endif

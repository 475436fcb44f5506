// The operating system's view of a data file that is open as a std::ofstream. The file goes by its
// own descriptor: what may bear its name meanwhile is none of the writer's.
#ifndef DATA_FILE_H
#define DATA_FILE_H

#include <cstdint>
#include <fstream>

namespace VLM_KPF {

/// The descriptor that `file` writes to; it stays the stream's. -1 when the file is not open.
int descriptorOf(std::ofstream& file) noexcept;

/**
 * Takes up a file again after a write that failed: forgets what the stream still holds, cuts the
 * file at `whole` bytes where it is longer, and lets the next write begin at `next`.
 *
 * The bytes between read as zero once something stands behind them. What the system refuses is
 * left as it is; when not even `next` can be reached, the stream's fail flag is set.
 */
void resumeAt(std::ofstream& file, std::uint64_t whole, std::uint64_t next);

}  // namespace VLM_KPF

#endif

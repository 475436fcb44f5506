// The ways to write a long recording that are compared: each takes frame after frame.
#ifndef BENCH_STREAM_SUSTAINED_WRITERS_H
#define BENCH_STREAM_SUSTAINED_WRITERS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/support/jobs.h"

namespace BENCH {

/// A camera's frames, made beforehand; they come again and again.
struct Material {
  explicit Material(FrameSize frameSize, int bits = 12);

  FrameSize size;
  int bitsPerPixel;
  std::vector<std::vector<unsigned char>> images;   // 16 bits a pixel
  std::vector<std::vector<unsigned char>> records;  // packed, header included

  std::size_t recordSize() const { return records[0].size(); }
};

class FrameWriter {
 public:
  virtual ~FrameWriter() = default;
  /// Writes frame `n`; what a camera application would wait for.
  virtual void write(unsigned n) = 0;
};

/// Opens a recording of so many frames below `folder`. The material must outlive it.
using OpenWriter = std::function<std::unique_ptr<FrameWriter>(
    const std::string& folder, const Material& material, unsigned frames)>;

struct NamedWriter {
  std::string name;
  OpenWriter open;
};

std::unique_ptr<FrameWriter> openLibrary(const std::string&, const Material&, unsigned);
/// `write` of records that are ready.
std::unique_ptr<FrameWriter> openPlain(const std::string&, const Material&, unsigned);
/// The same past the page cache, through an aligned buffer into a file of the full size.
std::unique_ptr<FrameWriter> openDirect(const std::string&, const Material&, unsigned);
std::unique_ptr<FrameWriter> openTiff(const std::string&, const Material&, unsigned);
std::unique_ptr<FrameWriter> openHdf5(const std::string&, const Material&, unsigned);

/// All that this build has, the library first.
std::vector<NamedWriter> allWriters();

inline void require(bool done, const char* what) {
  if (!done) throw std::runtime_error(std::string(what) + " failed");
}

}  // namespace BENCH

#endif
